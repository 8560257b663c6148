#include "simulator/TcpStream.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr std::uint64_t wrap = 1ULL << 32;
/// Maximum distance of an acknowledgement from m_next, more than any TCP window: a number further
/// ahead belongs to another connection.
constexpr std::uint64_t largestGap = 1ULL << 30;

} // namespace

void TcpStream::begin(std::uint32_t sequence)
{
    m_begun = true;
    m_next = wrap + sequence; // so that unwrapped() does not underflow for earlier numbers
}

std::uint64_t TcpStream::unwrapped(std::uint32_t sequence) const
{
    const auto distance = static_cast<std::int32_t>(sequence - static_cast<std::uint32_t>(m_next));
    return m_next + static_cast<std::uint64_t>(static_cast<std::int64_t>(distance));
}

void TcpStream::fill(std::uint64_t size)
{
    if (size > 0) {
        ++m_filledRuns;
        m_filledBytes += size;
    }
}

std::string TcpStream::takeInOrder()
{
    std::string bytes;
    while (!m_early.empty() && m_early.begin()->first <= m_next) {
        const auto [start, segment] = *m_early.begin();
        m_early.erase(m_early.begin());
        const std::uint64_t known = m_next - start;
        if (known < segment.size()) {
            bytes += segment.substr(static_cast<std::size_t>(known));
            m_next = start + segment.size();
        }
    }
    return bytes;
}

std::string TcpStream::add(std::uint32_t sequence, std::string_view captured, std::uint64_t size)
{
    if (size == 0) {
        return {};
    }
    if (!m_begun) {
        begin(sequence);
    }
    const std::uint64_t start = unwrapped(sequence);
    if (start + size <= m_next || m_early.count(start) != 0) {
        return {};
    }
    std::string segment(captured.substr(0, static_cast<std::size_t>(size)));
    fill(size - segment.size());
    segment.resize(static_cast<std::size_t>(size), '\0');
    m_early[start] = std::move(segment);
    return takeInOrder();
}

bool TcpStream::end(std::uint32_t sequence)
{
    const bool first = m_end == std::numeric_limits<std::uint64_t>::max();
    m_end = unwrapped(sequence);
    return first;
}

std::string TcpStream::acknowledged(std::uint32_t sequence)
{
    if (!m_begun) {
        return {};
    }
    std::string bytes;
    // The end of the stream takes up one sequence number but is no byte.
    const std::uint64_t end = std::min(unwrapped(sequence), m_end);
    if (end > m_next && end - m_next > largestGap) {
        return {};
    }
    while (m_next < end) {
        const std::uint64_t known = m_early.empty() ? end : std::min(end, m_early.begin()->first);
        fill(known - m_next);
        bytes.append(static_cast<std::size_t>(known - m_next), '\0');
        m_next = known;
        bytes += takeInOrder();
    }
    return bytes;
}

} // namespace simulator
