// Puts the bytes of one direction of a TCP connection in order, from the packets of a capture.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>

namespace simulator {

/// Collects segments; repeated bytes are dropped, early ones kept until their turn.
class TcpStream
{
public:
    /// The sequence number of the first byte; without one the first segment decides.
    void begin(std::uint32_t sequence);
    /// Adds a segment. size: its length on the wire, which may be more than was captured. Returns
    /// the bytes that are now in order.
    std::string add(std::uint32_t sequence, std::string_view captured, std::uint64_t size);
    /// Tells where the stream ends. Returns true the first time.
    bool end(std::uint32_t sequence);
    /// The peer has got everything before this number: what the capture lacks of it is filled with
    /// zeros. Returns the bytes that are now in order.
    std::string acknowledged(std::uint32_t sequence);
    /// How many runs of bytes were filled in, and how many bytes.
    std::uint64_t filledRuns() const { return m_filledRuns; }
    std::uint64_t filledBytes() const { return m_filledBytes; }

private:
    /// The number without its wrapping around, near to the next byte's.
    std::uint64_t unwrapped(std::uint32_t sequence) const;
    std::string takeInOrder();
    void fill(std::uint64_t size);

    bool m_begun = false;
    std::uint64_t m_next = 0; ///< the next byte's number, never wrapping around
    std::uint64_t m_end = std::numeric_limits<std::uint64_t>::max();
    std::map<std::uint64_t, std::string> m_early;
    std::uint64_t m_filledRuns = 0;
    std::uint64_t m_filledBytes = 0;
};

} // namespace simulator
