#include "verify/ShownText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

namespace verify {

namespace {

struct Range
{
    char32_t first;
    char32_t last;
};

constexpr std::array controls{
    Range{0x0000, 0x001F},    // C0
    Range{0x007F, 0x009F},    // DEL, C1
    Range{0x00AD, 0x00AD},    // soft hyphen
    Range{0x061C, 0x061C},    // Arabic letter mark
    Range{0x115F, 0x1160},    // Hangul fillers
    Range{0x180E, 0x180E},    // Mongolian vowel separator
    Range{0x200B, 0x200F},    // zero-width characters, left-to-right and right-to-left mark
    Range{0x2028, 0x202E},    // line and paragraph separator, embeddings, overrides
    Range{0x2060, 0x206F},    // word joiner, isolates, deprecated formats
    Range{0x3164, 0x3164},    // Hangul filler
    Range{0xFEFF, 0xFEFF},    // byte order mark
    Range{0xFFA0, 0xFFA0},    // halfwidth Hangul filler
    Range{0xFFF9, 0xFFFB},    // annotations
    Range{0xE0000, 0xE0FFF},  // tags, variation selectors
    Range{0xF0000, 0x10FFFF}, // private use, noncharacters
};

std::string escaped(const char* format, unsigned value)
{
    char text[16];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

} // namespace

bool isControl(char32_t letter)
{
    return std::any_of(controls.begin(), controls.end(), [letter](const Range& range) {
        return letter >= range.first && letter <= range.last;
    });
}

int decodeUtf8(std::string_view text, char32_t& letter)
{
    if (text.empty()) {
        return 0;
    }
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned first = byte(0);
    if (first < 0x80) {
        letter = first;
        return 1;
    }
    const int length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < static_cast<std::size_t>(length)) {
        return 0;
    }
    letter = first & (0xFFU >> (length + 1));
    for (int i = 1; i < length; ++i) {
        const unsigned next = byte(static_cast<std::size_t>(i));
        if ((next & 0xC0U) != 0x80) {
            return 0;
        }
        letter = (letter << 6) | (next & 0x3FU);
    }
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = letter >= 0xD800 && letter <= 0xDFFF;
    const bool valid =
        letter >= smallest[static_cast<std::size_t>(length)] && letter <= 0x10FFFF && !surrogate;
    return valid ? length : 0;
}

std::string shownText(std::string_view text, Letters letters)
{
    std::string shown;
    while (!text.empty()) {
        char32_t letter = 0;
        const int length = decodeUtf8(text, letter);
        if (length == 0) {
            shown += escaped("\\x%02X", static_cast<unsigned char>(text[0]));
        } else if (letter == U'\\') {
            shown += "\\\\";
        } else if (isControl(letter) || (letters == Letters::Ascii && letter > 0x7E)) {
            shown += escaped("\\u{%X}", static_cast<unsigned>(letter));
        } else {
            shown += text.substr(0, static_cast<std::size_t>(length));
        }
        text.remove_prefix(static_cast<std::size_t>(std::max(length, 1)));
    }
    return shown;
}

} // namespace verify
