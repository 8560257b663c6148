// Splits received bytes into lines.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simulator {

/// A buffer that keeps the beginning of a line until the rest has arrived.
class LineReader
{
public:
    void add(std::string_view bytes) { m_unread += bytes; }
    /// Removes and returns the next complete line, without its line ending.
    std::optional<std::string> next()
    {
        const std::size_t end = m_unread.find('\n');
        if (end == std::string::npos) {
            return std::nullopt;
        }
        std::string line = m_unread.substr(0, end);
        m_unread.erase(0, end + 1);
        return line;
    }
    /// Discards an incomplete line that is too long. Returns whether one was discarded.
    bool dropOverlong()
    {
        const bool overlong = m_unread.size() > longest;
        if (overlong) {
            m_unread.clear();
        }
        return overlong;
    }

private:
    static constexpr std::size_t longest = 65'536;
    std::string m_unread;
};

} // namespace simulator
