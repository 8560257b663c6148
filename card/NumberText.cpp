#include "card/NumberText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace card {

void writeNumber(int value, char* text, int radix)
{
    constexpr char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    if (value < 0 || radix < 2 || radix > 36) {
        return;
    }
    std::array<char, 100> reversed{};
    std::size_t length = 0;
    for (; value > 0; value /= radix) {
        reversed[length++] = digits[value % radix];
    }
    const auto end = reversed.begin() + static_cast<std::ptrdiff_t>(length);
    *std::reverse_copy(reversed.begin(), end, text) = '\0';
}

} // namespace card
