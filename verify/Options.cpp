#include "verify/Options.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace verify {

namespace {

using Kind = WrongOption::Kind;

/// Returns the whole seconds in a text, from 1 to longestTimeout, or nothing.
std::optional<int> secondsIn(std::string_view text)
{
    int seconds = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') {
            return std::nullopt;
        }
        seconds = seconds * 10 + (digit - '0');
        if (seconds > longestTimeout) {
            return std::nullopt;
        }
    }
    return seconds > 0 ? std::optional(seconds) : std::nullopt;
}

/// Sets an option that takes no value. Returns false for any other option.
bool setFlag(Options& options, std::string_view name)
{
    if (name == "--content") {
        options.contents = true;
    } else if (name == "--json") {
        options.json = true;
    } else if (name == "--wait") {
        options.wait = true;
    } else if (name == "--help") {
        options.action = Options::Action::Help;
    } else if (name == "--version") {
        options.action = Options::Action::Version;
    } else {
        return false;
    }
    return true;
}

std::optional<WrongOption> setValue(Options& options, const std::string& name,
                                    const std::string& value)
{
    if (value.empty()) {
        return WrongOption{Kind::EmptyValue, name};
    }
    if (name == "--desktop") {
        options.desktop = value;
        return std::nullopt;
    }
    const std::optional<int> seconds = secondsIn(value);
    if (!seconds) {
        return WrongOption{Kind::BadTimeout, value};
    }
    options.timeout = *seconds;
    return std::nullopt;
}

} // namespace

std::variant<Options, WrongOption> readOptions(const std::vector<std::string>& arguments)
{
    Options options;
    bool onlyNames = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (onlyNames || argument.empty() || argument[0] != '-') {
            options.names.push_back(argument);
            continue;
        }
        if (argument == "--") {
            onlyNames = true;
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        if (setFlag(options, name)) {
            if (equals != std::string::npos) {
                return WrongOption{Kind::TakesNoValue, name};
            }
            continue;
        }
        if (name != "--timeout" && name != "--desktop") {
            return WrongOption{Kind::Unknown, argument};
        }
        if (equals == std::string::npos && i + 1 == arguments.size()) {
            return WrongOption{Kind::NeedsValue, name};
        }
        const std::string value =
            equals == std::string::npos ? arguments[++i] : argument.substr(equals + 1);
        if (const auto wrong = setValue(options, name, value)) {
            return *wrong;
        }
    }
    return options;
}

} // namespace verify
