// Parses decimal numbers at the start of a text.
#pragma once

#include <cstdlib>

namespace sys {

/// Returns the decimal number at the start of `text`, which may have white space and a sign before
/// its digits; 0 without digits. A number outside the range of long is limited to that range, and
/// the low 32 bits of the result are returned, so that hostile input never causes undefined
/// behaviour.
inline int leadingNumber(const char* text)
{
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

} // namespace sys
