// The command line of belun-verify.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace verify {

/// The parsed command line.
struct Options
{
    enum class Action { Compare, Help, Version };
    Action action = Action::Compare;
    bool contents = false;          ///< --content
    bool json = false;              ///< --json
    bool wait = false;              ///< --wait
    int timeout = 15;               ///< --timeout, in seconds
    std::string desktop;            ///< --desktop; empty: the user's own
    std::vector<std::string> names; ///< recordings to compare; empty: all
};

constexpr int longestTimeout = 3600; // seconds

/// An invalid command line.
struct WrongOption
{
    enum class Kind { Unknown, NeedsValue, TakesNoValue, BadTimeout, EmptyValue };
    Kind kind;
    std::string option; ///< the name; the argument for Unknown, the value for BadTimeout
};

/// Parses the arguments after the program's name. The value of an option is the next argument or
/// follows an equals sign. Arguments that do not begin with a minus sign, and all arguments after
/// `--`, are names of recordings.
std::variant<Options, WrongOption> readOptions(const std::vector<std::string>& arguments);

} // namespace verify
