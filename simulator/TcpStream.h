// Reassembles one direction of a TCP connection from the packets of a capture.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>

namespace simulator {

/// One direction of a connection: drops repeated bytes, and keeps early segments until the bytes
/// before them have arrived.
class TcpStream
{
public:
    /// Sets the sequence number of the first byte. If this is not called, add() takes the number
    /// from the first segment.
    void begin(std::uint32_t sequence);
    /// Adds a segment. size: its length on the wire, which may be more than was captured. Returns
    /// the bytes that are now in order.
    std::string add(std::uint32_t sequence, std::string_view captured, std::uint64_t size);
    /// Sets the end of the stream. Returns true the first time.
    bool end(std::uint32_t sequence);
    /// Processes an acknowledgement: the peer has received everything before this number, so bytes
    /// missing from the capture are replaced by zeros. Returns the bytes that are now in order.
    std::string acknowledged(std::uint32_t sequence);
    /// Returns the number of gaps; filledBytes() returns the number of bytes filled in.
    std::uint64_t filledRuns() const { return m_filledRuns; }
    std::uint64_t filledBytes() const { return m_filledBytes; }

private:
    /// Returns a sequence number without wraparound: the one nearest to m_next.
    std::uint64_t unwrapped(std::uint32_t sequence) const;
    std::string takeInOrder();
    void fill(std::uint64_t size);

    bool m_begun = false;
    std::uint64_t m_next = 0; ///< sequence number of the next byte, without wraparound
    std::uint64_t m_end = std::numeric_limits<std::uint64_t>::max();
    std::map<std::uint64_t, std::string> m_early;
    std::uint64_t m_filledRuns = 0;
    std::uint64_t m_filledBytes = 0;
};

} // namespace simulator
