#include "simulator/Mp4Duration.h"

#include <algorithm>
#include <string_view>

namespace simulator {

namespace {

/// Maximum number of boxes searched, so that a malicious file cannot prolong the search.
constexpr int boxLimit = 10'000;
constexpr std::uint32_t unitsPerSecond = 1000;

std::uint64_t bigEndian(std::string_view bytes)
{
    std::uint64_t value = 0;
    for (const char byte : bytes) {
        value = value << 8 | static_cast<unsigned char>(byte);
    }
    return value;
}

std::string word(std::uint32_t value)
{
    return {static_cast<char>(value >> 24 & 0xFFU), static_cast<char>(value >> 16 & 0xFFU),
            static_cast<char>(value >> 8 & 0xFFU), static_cast<char>(value & 0xFFU)};
}

struct Box
{
    std::uint64_t begin; ///< of the payload
    std::uint64_t end;
};

std::optional<Box> findBox(const Content& content, std::uint64_t begin, std::uint64_t end,
                           std::string_view type)
{
    for (int i = 0; i < boxLimit && begin < end && end - begin >= 8; ++i) {
        char head[16];
        if (content.read(begin, head, 8) != 8) {
            return std::nullopt;
        }
        std::uint64_t headSize = 8;
        std::uint64_t length = bigEndian({head, 4});
        if (length == 1) {
            if (content.read(begin, head, 16) != 16) {
                return std::nullopt;
            }
            headSize = 16;
            length = bigEndian({head + 8, 8});
        } else if (length == 0) {
            length = end - begin;
        }
        if (length < headSize || length > end - begin) {
            return std::nullopt;
        }
        if (std::string_view(head + 4, 4) == type) {
            return Box{begin + headSize, begin + length};
        }
        begin += length;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::uint64_t> mp4Duration(const Content& content, std::uint64_t size)
{
    const auto movie = findBox(content, 0, size, "moov");
    const auto header =
        movie ? findBox(content, movie->begin, movie->end, "mvhd") : std::optional<Box>();
    if (!header) {
        return std::nullopt;
    }
    // The fields are version and flags, creation time, modification time, time scale and duration.
    // In version 1 both times and the duration have 64 bits.
    char fields[32] = {};
    const auto length = static_cast<std::size_t>(
        std::min<std::uint64_t>(sizeof fields, header->end - header->begin));
    const std::size_t got = content.read(header->begin, fields, length);
    const bool wide = fields[0] == 1;
    if (got < (wide ? 32U : 20U)) {
        return std::nullopt;
    }
    const std::uint64_t scale = bigEndian({fields + (wide ? 20 : 12), 4});
    const std::uint64_t duration = wide ? bigEndian({fields + 24, 8}) : bigEndian({fields + 16, 4});
    const bool unknown = duration == (wide ? UINT64_MAX : UINT32_MAX);
    if (scale == 0 || unknown) {
        return std::nullopt;
    }
    return duration / scale;
}

std::string mp4Head(std::uint32_t seconds)
{
    std::string header = word(0) + word(0) + word(0) + word(unitsPerSecond) +
                         word(seconds * unitsPerSecond) + word(0x00010000U); // rate 1.0
    header += std::string("\x01\x00", 2) + std::string(10, '\0');            // volume, reserved
    header += word(0x00010000U) + word(0) + word(0) + word(0) + word(0x00010000U) + word(0);
    header += word(0) + word(0) + word(0x40000000U); // the unit matrix
    header += std::string(24, '\0') + word(2);       // predefined, next track
    header = word(static_cast<std::uint32_t>(header.size() + 8)) + "mvhd" + header;
    const std::string type = "ftypisom" + word(0x200) + "isommp41";
    return word(static_cast<std::uint32_t>(type.size() + 4)) + type +
           word(static_cast<std::uint32_t>(header.size() + 8)) + "moov" + header + word(0) + "mdat";
}

} // namespace simulator
