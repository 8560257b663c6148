#include "verify/Numbers.h"

#include <charconv>
#include <cstddef>

namespace verify {

namespace {

std::optional<std::uint64_t> numberIn(std::string_view text, int base)
{
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    if (text.empty() || result.ec != std::errc() || result.ptr != end) {
        return std::nullopt;
    }
    return number;
}

} // namespace

std::optional<std::uint64_t> decimalNumber(std::string_view text)
{
    return numberIn(text, 10);
}

std::optional<std::uint64_t> hexadecimalNumber(std::string_view text)
{
    return numberIn(text, 16);
}

std::string grouped(std::uint64_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3;) {
        place -= 3;
        text.insert(place, 1, ',');
    }
    return text;
}

} // namespace verify
