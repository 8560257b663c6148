// The command line: one table of options for the parser, --help, the manual page and the
// completion.
#pragma once

#include "simulator/ModuleConnection.h"
#include "simulator/SampleCard.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace simulator {

/// What the command line asks for.
struct Options
{
    enum class Action { Run, Help, Version, ListFaults, WriteSample, Send };
    Action action = Action::Run;
    std::string cardFolder;   ///< empty: a sample card
    std::string sampleFolder; ///< --sample-to
    bool sampleGiven = false; ///< --sample was given
    Sample sample = Sample::Boundary;
    std::uint64_t seed = 1;
    std::uint64_t rate = 0; ///< bytes per second for recordings; 0: no limit
    Milliseconds heartbeat{1'000};
    Versions versions{7, 300, 600, 100, 10};
    std::vector<std::string> faults;
    std::string scenario;
    std::uint64_t speed = 1; ///< how many times faster the scenario's time passes
    std::string form;        ///< of --help or --list-faults: "text", "man", "json", ...
    std::string journal;
    bool journalFull = false;
    std::string replay;
    std::string controlSocket;      ///< --control, or --send
    std::vector<std::string> lines; ///< the control lines to send
    bool exitWithStdin = false;
};

/// One option of the command line.
struct OptionRow
{
    enum class Takes {
        Nothing,
        Value,
        OptionalValue,
        ValueAndRest ///< a value; all further arguments are control lines
    };
    std::string name;
    Takes takes;
    std::string value;  ///< as --help shows it: "DIR", "text|json"
    std::string effect; ///< what it does, for --help and the manual page
    /// Stores the value; returns false if the value is invalid.
    std::function<bool(Options&, const std::string&)> store;
};

/// Returns all options, in the order of --help.
const std::vector<OptionRow>& optionRows();

/// Reads the command line into the options. Returns an error text, empty on success.
std::string parseOptions(const std::vector<std::string>& arguments, Options& options);

/// Parses a decimal number. Returns false for any other text and for a number that is too large.
bool parseUnsigned(const std::string& text, std::uint64_t& number);

/// Parses a size: a decimal number, which may end in k (1,024) or M (1,048,576). Returns false for
/// any other text and for a size that is too large.
bool parseSize(const std::string& text, std::uint64_t& size);

/// Returns what --help prints. form: "text"; "man" or "man-lines" (the options or the control lines
/// as parts of the manual page); "words" (one option per line) or "lines" (the first words of
/// control lines), for completion.
std::string help(const std::string& form);

} // namespace simulator
