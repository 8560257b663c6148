// The control lines: one table for the parser and the help texts.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace simulator {

class Simulator;

/// The answer to a control line.
struct ControlAnswer
{
    std::string error;                  ///< why the line was not executed; empty if it was
    std::string summary{};              ///< text after "ok" and the control line
    std::vector<std::string> details{}; ///< lines before the line with "ok"
};

/// A control line that has been parsed but not executed.
struct ControlLine
{
    std::string text;  ///< without spaces around it
    std::string error; ///< why the line is invalid; empty if `run` can execute it
    std::function<ControlAnswer(Simulator&)> run{};
};

/// Parses a control line and checks everything that can be checked before it is executed.
ControlLine parseControlLine(const std::string& text);

/// Returns whether there is a control line that begins with this word.
bool isControlWord(const std::string& word);

/// Returns one line per control line: its syntax and its effect.
std::vector<std::string> controlLinesHelp();

} // namespace simulator
