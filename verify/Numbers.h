// Numbers in the camera's answers and in the report.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace verify {

/// Returns the number if the text consists of one or more decimal digits and the number fits into
/// 64 bits, otherwise nothing.
std::optional<std::uint64_t> decimalNumber(std::string_view text);
/// Returns the same for hexadecimal digits.
std::optional<std::uint64_t> hexadecimalNumber(std::string_view text);

/// Returns the decimal digits with commas between groups of three: "1,572,864".
std::string grouped(std::uint64_t number);

} // namespace verify
