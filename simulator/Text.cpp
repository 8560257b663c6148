#include "simulator/Text.h"

#include <algorithm>
#include <array>
#include <cstdio>

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

namespace {

/// Returns the edit distance of two words: the smallest number of letters to insert, remove,
/// replace or swap with a neighbour so that one word becomes the other.
std::size_t distance(std::string_view one, std::string_view other)
{
    std::vector<std::vector<std::size_t>> table(one.size() + 1,
                                                std::vector<std::size_t>(other.size() + 1));
    for (std::size_t i = 0; i <= one.size(); ++i) {
        for (std::size_t j = 0; j <= other.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
                continue;
            }
            const bool same = one[i - 1] == other[j - 1];
            table[i][j] = std::min(
                {table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + (same ? 0U : 1U)});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1]) {
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
            }
        }
    }
    return table[one.size()][other.size()];
}

} // namespace

std::string didYouMean(std::string_view word, const std::vector<std::string>& candidates)
{
    constexpr std::size_t longestWord = 64;
    std::string nearest;
    std::size_t least = std::min(word.size(), longestWord) / 3 + 1;
    for (const std::string& candidate : candidates) {
        if (word.size() > longestWord || word.size() < 3 || candidate.empty()) {
            continue;
        }
        if (const std::size_t far = distance(word, candidate); far < least) {
            least = far;
            nearest = candidate;
        }
    }
    return nearest.empty() ? std::string() : "; did you mean \"" + nearest + "\"?";
}

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

std::string jsonString(std::string_view text)
{
    std::string quoted = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            quoted += '\\';
            quoted += character;
        } else if (byte < 0x20 || byte > 0x7E) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(byte));
            quoted += escape;
        } else {
            quoted += character;
        }
    }
    return quoted + "\"";
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

std::string columns(std::string first, std::string_view second, std::size_t start,
                    std::size_t width)
{
    std::string text;
    std::string line = std::move(first);
    if (line.size() + 2 > start) {
        text += line + "\n";
        line.clear();
    }
    const std::size_t room = width - start;
    while (!second.empty()) {
        std::size_t end = second.size() > room ? second.rfind(' ', room) : second.size();
        end = end == std::string_view::npos || end == 0 ? room : end;
        line.resize(start, ' ');
        text += line.append(second.substr(0, end)) + "\n";
        line.clear();
        second.remove_prefix(end);
        second.remove_prefix(!second.empty() && second.front() == ' ' ? 1 : 0);
    }
    return text;
}

std::string manualText(const std::string& text)
{
    std::string shown;
    for (const char character : text) {
        if (character == '-') {
            shown += "\\-";
        } else if (character == '\\') {
            shown += "\\e";
        } else if (character == '\'') {
            shown += "\\(aq";
        } else {
            shown += character;
        }
    }
    return shown.compare(0, 1, ".") == 0 ? "\\&" + shown : shown;
}

void printLine(std::string_view line)
{
    std::string text(line.substr(0, 4000)); // below PIPE_BUF, so a ready pipe accepts it completely
    text += '\n';
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    if (::poll(&output, 1, 0) == 1 && (output.revents & POLLOUT) != 0) {
        // Nothing can be reported if standard output is gone.
        [[maybe_unused]] const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
    }
}

} // namespace simulator
