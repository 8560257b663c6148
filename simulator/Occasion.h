// When a fault acts: always, for some requests or connections, or randomly.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace simulator {

/// The numbers of the requests or connections on which a fault acts.
class Occasion
{
public:
    /// Parses a text such as "3", "3-5", "3-" or "10%". Returns false for an invalid one.
    static bool parse(std::string_view text, Occasion& occasion);

    bool always() const { return *this == Occasion(); }
    /// Returns whether the fault acts on the request or connection with this number. For a
    /// percentage this depends only on seed, salt and number, so that a run can be repeated.
    bool includes(std::uint64_t number, std::uint64_t seed, std::uint64_t salt) const;
    /// Returns a text from which parse() sets this occasion; must not be called if always().
    std::string text() const;

    bool operator==(const Occasion& other) const
    {
        return m_first == other.m_first && m_last == other.m_last && m_percent == other.m_percent;
    }

private:
    static constexpr std::uint64_t noEnd = std::numeric_limits<std::uint64_t>::max();

    std::uint64_t m_first = 0;
    std::uint64_t m_last = noEnd;
    unsigned m_percent = 100;
};

} // namespace simulator
