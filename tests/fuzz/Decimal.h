// Parses numbers independently, to compare with the product's result.
#pragma once

#include <optional>
#include <string_view>

namespace fuzz {

/// Returns the value of the leading decimal digits: 0 without digits; nothing for texts that start
/// with a space or sign or have more than nine digits, which the product may parse differently.
inline std::optional<int> shortDecimal(std::string_view text)
{
    constexpr std::string_view digits = "0123456789";
    constexpr std::size_t mostDigits = 9;
    if (text.find_first_of(" \t\n\v\f\r+-") == 0) {
        return std::nullopt;
    }
    const std::string_view number = text.substr(0, text.find_first_not_of(digits));
    if (number.size() > mostDigits) {
        return std::nullopt;
    }
    int value = 0;
    for (const char digit : number) {
        value = value * 10 + (digit - '0');
    }
    return value;
}

} // namespace fuzz
