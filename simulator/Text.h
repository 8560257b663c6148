#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace simulator {

/// Lower-case hexadecimal digits, two per byte, nothing between them.
std::string hexText(std::string_view bytes);

/// The CRC-32 of zip and zlib, continued from an earlier result (0 at the start).
std::uint32_t crc32(std::uint32_t earlier, std::string_view bytes);

/// Writes one line and a line end to standard output at once. A reader that has stopped reading
/// never blocks the simulator: the line is dropped then.
void printLine(std::string_view line);

} // namespace simulator
