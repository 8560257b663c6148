// Reads the numbers in a captured packet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace simulator {

/// The bytes of a packet, with numbers in network byte order. Bytes beyond the end read as zero.
class PacketBytes
{
public:
    explicit PacketBytes(std::string_view bytes) : m_bytes(bytes) {}

    std::size_t size() const { return m_bytes.size(); }
    std::uint8_t byte(std::size_t at) const
    {
        return at < m_bytes.size() ? static_cast<std::uint8_t>(m_bytes[at]) : std::uint8_t{0};
    }
    std::uint16_t word(std::size_t at) const
    {
        return static_cast<std::uint16_t>(byte(at) << 8 | byte(at + 1));
    }
    std::uint32_t number(std::size_t at) const
    {
        return static_cast<std::uint32_t>(word(at)) << 16 | word(at + 2);
    }
    PacketBytes from(std::size_t at) const
    {
        return PacketBytes(at < m_bytes.size() ? m_bytes.substr(at) : std::string_view());
    }
    std::string_view view() const { return m_bytes; }

private:
    std::string_view m_bytes;
};

} // namespace simulator
