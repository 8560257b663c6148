// Decimal numbers in addresses and header lines.
#pragma once

#include <cstdlib>
#include <string>

namespace http {

/// Value of the leading decimal digits of `text` with their sign, 0 when there are none. A number
/// too large for an int keeps its low 32 bits, so that a hostile length is odd but never undefined
/// behaviour.
inline int leadingNumber(const std::string& text)
{
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

} // namespace http
