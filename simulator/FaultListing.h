// The table of faults as text: for a terminal, for programs, for the documentation.
#pragma once

#include <string>

namespace simulator {

/// Returns what --list-faults prints. form: "text" (grouped, at most 100 columns wide), "json" (an
/// array with an object for each fault), "markdown" (docs/faults.md), "man" (the subsections of the
/// manual page) or "words" (names, and values of faults that take words, for completion).
std::string faultList(const std::string& form);

} // namespace simulator
