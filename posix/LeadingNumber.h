// Parses decimal numbers at the start of a text.
#pragma once

#include <cstdlib>

namespace sys {

/// Returns the value of the decimal digits at the start of `text`, after optional white space and
/// an optional sign; 0 without digits. A number too large for an int becomes the low 32 bits of the
/// nearest long, so that hostile input never causes undefined behaviour.
inline int leadingNumber(const char* text)
{
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

} // namespace sys
