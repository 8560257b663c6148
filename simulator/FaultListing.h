// The table of faults as text: for a terminal, for programs, for the documentation.
#pragma once

#include <string>

namespace simulator {

/// Returns the output of --list-faults. form: "text" (grouped, at most 100 columns wide), "json"
/// (an array with one object per fault), "markdown" (docs/faults.md), "man" (the subsections of the
/// manual page) or "words" (names, and values of faults that take words, for completion).
std::string faultList(const std::string& form);

} // namespace simulator
