// Functions that encode, lay out, compare and print texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// Returns lower-case hexadecimal digits, two per byte, without separators.
std::string hexText(std::string_view bytes);

/// Returns the text as a JSON string, including quotes. Bytes of 0x80 and above become the code
/// point of the same number, so that no byte is lost and the result is ASCII.
std::string jsonString(std::string_view text);

/// Returns the CRC-32, as zip and zlib compute it, continued from an earlier result (0 at the
/// start).
std::uint32_t crc32(std::uint32_t earlier, std::string_view bytes);

/// Returns a row of two columns: the first text, then the second from the column `start` on, broken
/// at spaces into lines of at most `width` characters. A first text that is too long has a line of
/// its own.
std::string columns(std::string first, std::string_view second, std::size_t start,
                    std::size_t width);

/// Returns `; did you mean "..."?` with the candidate that differs least from the word, or an
/// empty text if no candidate is similar enough.
std::string didYouMean(std::string_view word, const std::vector<std::string>& candidates);

/// Returns the text, escaped for the source of a manual page.
std::string manualText(const std::string& text);

/// Writes a line, cut to 4,000 bytes, and its line ending to standard output immediately. Drops the
/// line if standard output is not ready, so that the simulator never blocks.
void printLine(std::string_view line);

} // namespace simulator
