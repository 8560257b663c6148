// Numbers in the camera's answers and in the report.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace verify {

/// The number that the whole text is in decimal digits; nothing for any other text, or beyond 64
/// bits.
std::optional<std::uint64_t> decimalNumber(std::string_view text);
/// The same in hexadecimal digits.
std::optional<std::uint64_t> hexadecimalNumber(std::string_view text);

/// Decimal digits in groups of three: "1,572,864".
std::string grouped(std::uint64_t number);

} // namespace verify
