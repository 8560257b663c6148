#pragma once

#include "simulator/ModuleConnection.h"

#include <cstdint>
#include <string>
#include <vector>

namespace simulator {

/// What the command line asks for.
struct Options
{
    enum class Action { Run, Help, Version, ListFaults, WriteSample };
    Action action = Action::Run;
    std::string cardFolder;   ///< empty: the sample card
    std::string sampleFolder; ///< --sample-to
    std::uint64_t seed = 1;
    std::uint64_t rate = 0; ///< bytes per second for recordings; 0: no limit
    Milliseconds heartbeat{1'000};
    Versions versions{7, 300, 600, 100, 10};
    std::vector<std::string> faults;
    std::string journal;
    bool exitWithStdin = false;
};

/// Reads the command line into the options. Returns an error text, empty on success.
std::string parseOptions(const std::vector<std::string>& arguments, Options& options);

/// A decimal number from 0 up; false when the text is anything else or too large.
bool parseUnsigned(const std::string& text, std::uint64_t& number);

/// The text of --help.
std::string helpText();

} // namespace simulator
