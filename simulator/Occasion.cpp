#include "simulator/Occasion.h"

#include "simulator/Content.h"

#include <charconv>

namespace simulator {

namespace {

template <typename Number>
bool takeNumber(std::string_view& text, Number& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

} // namespace

bool Occasion::parse(std::string_view text, Occasion& occasion)
{
    Occasion parsed;
    if (!text.empty() && text.back() == '%') {
        const bool fine = takeNumber(text, parsed.m_percent) && text == "%" &&
                          parsed.m_percent >= 1 && parsed.m_percent <= 99;
        occasion = parsed;
        return fine;
    }
    if (!takeNumber(text, parsed.m_first) || parsed.m_first == 0) {
        return false;
    }
    if (text.empty()) {
        parsed.m_last = parsed.m_first;
    } else if (text.front() != '-') {
        return false;
    } else if (text.remove_prefix(1); !text.empty() && !takeNumber(text, parsed.m_last)) {
        return false;
    }
    occasion = parsed;
    return text.empty() && parsed.m_last >= parsed.m_first;
}

bool Occasion::includes(std::uint64_t number, std::uint64_t seed, std::uint64_t salt) const
{
    return number >= m_first && number <= m_last &&
           (m_percent == 100 || mixed(mixed(mixed(seed) + salt) + number) % 100 < m_percent);
}

std::string Occasion::text() const
{
    if (m_percent != 100) {
        return std::to_string(m_percent) + "%";
    }
    const std::string first = std::to_string(m_first);
    return m_last == m_first ? first
                             : first + "-" + (m_last == noEnd ? "" : std::to_string(m_last));
}

} // namespace simulator
