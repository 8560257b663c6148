// Parses decimal numbers at the start of a text.
#pragma once

#include <cstdlib>

namespace sys {

/// Returns the value of the leading decimal digits of `text` with their sign, 0 if there are none.
/// A number too large for an int keeps its low 32 bits, so that hostile input never causes
/// undefined behaviour.
inline int leadingNumber(const char* text)
{
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

} // namespace sys
