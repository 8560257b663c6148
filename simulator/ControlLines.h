// The control lines: one table, from which the parser and the texts of help come.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace simulator {

class Simulator;

/// The answer to a control line.
struct ControlAnswer
{
    std::string error;                  ///< why it was not carried out; empty: it was
    std::string summary{};              ///< follows the line in the last line of the answer
    std::vector<std::string> details{}; ///< lines of their own, before it
};

/// A control line that has been read but not carried out.
struct ControlLine
{
    std::string text;  ///< without spaces around it
    std::string error; ///< why it is none; empty: `run` carries it out
    std::function<ControlAnswer(Simulator&)> run{};
};

/// Reads a control line and checks all that can be checked before it is carried out.
ControlLine parseControlLine(const std::string& text);

/// Returns true if a control line begins with this word.
bool isControlWord(const std::string& word);

/// Returns one line for each control line: how it is written and what it does.
std::vector<std::string> controlLinesHelp();

} // namespace simulator
