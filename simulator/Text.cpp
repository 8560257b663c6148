#include "simulator/Text.h"

#include <array>

#include <poll.h>
#include <unistd.h>

namespace simulator {

namespace {

constexpr std::array<std::uint32_t, 256> crcTable()
{
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? 0xEDB88320U ^ (value >> 1) : value >> 1;
        }
        table[i] = value;
    }
    return table;
}

} // namespace

std::string hexText(std::string_view bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += digits[value >> 4];
        text += digits[value & 15U];
    }
    return text;
}

std::uint32_t crc32(std::uint32_t earlier, std::string_view bytes)
{
    static constexpr auto table = crcTable();
    std::uint32_t value = ~earlier;
    for (const char byte : bytes) {
        value = table[(value ^ static_cast<unsigned char>(byte)) & 0xFFU] ^ (value >> 8);
    }
    return ~value;
}

void printLine(std::string_view line)
{
    std::string text(line.substr(0, 4000)); // below PIPE_BUF: a ready pipe takes it whole
    text += '\n';
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    if (::poll(&output, 1, 0) == 1 && (output.revents & POLLOUT) != 0) {
        // Nothing is left to tell when standard output is gone.
        [[maybe_unused]] const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
    }
}

} // namespace simulator
