// Makes untrusted texts, such as names from the card, safe to display.
#pragma once

#include <string>
#include <string_view>

namespace verify {

/// The characters that the terminal can show.
enum class Letters { Utf8, Ascii };

/// Returns the text with all characters escaped that a terminal would interpret or that could hide
/// a part of the text. Control characters (C0, DEL, C1), bidirectional controls, invisible
/// characters and, for Letters::Ascii, all non-ASCII characters become \u{HEX}; bytes that are not
/// UTF-8 become \xHH. A backslash is doubled, so that different texts have different results.
std::string shownText(std::string_view text, Letters letters);

/// Returns whether shownText() writes this code point as \u{HEX} for both values of Letters.
bool isControl(char32_t letter);

/// Decodes the code point at the start of a text and returns its length in bytes: 1 to 4, or 0 if
/// the text is empty or does not begin with valid UTF-8.
int decodeUtf8(std::string_view text, char32_t& letter);

} // namespace verify
