// The report as JSON: one object per line. Its member names and words are an interface, documented
// in the manual page.
#pragma once

#include "verify/Judgement.h"

#include <string>

namespace verify {

/// Returns the object of a recording, without a line ending.
std::string jsonLine(const Recording& recording);

/// Returns the object of the summary, without a line ending. `text` and `failure`: the results of
/// Texts::summary() and Texts::failure().
std::string jsonLine(const Summary& summary, const std::string& text, const std::string& failure);

} // namespace verify
