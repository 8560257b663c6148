// Texts of others, such as names from the card, made fit to be shown.
#pragma once

#include <string>
#include <string_view>

namespace verify {

/// Which letters the terminal takes as they are.
enum class Letters { Utf8, Ascii };

/// The text without anything that a terminal would obey or that would hide a part of it. Control
/// characters (C0, DEL, C1), marks that turn the direction of writing, invisible characters and,
/// for Letters::Ascii, all beyond ASCII become \u{HEX}; bytes that are no UTF-8 become \xHH. A
/// backslash becomes two, so that no two texts look the same.
std::string shownText(std::string_view text, Letters letters);

/// Whether a code point is one of those that shownText() never lets through.
bool isControl(char32_t letter);

/// Reads the code point at the start of a text and returns its length in bytes: 1 to 4, 0 where no
/// valid UTF-8 begins.
int decodeUtf8(std::string_view text, char32_t& letter);

} // namespace verify
