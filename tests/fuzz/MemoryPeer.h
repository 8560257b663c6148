// A simulated peer in memory. A target is linked with --wrap for `recv`, `read` or `write`. The
// product uses descriptor -1 while no socket is open: while a peer exists, these calls on
// descriptor -1 go to the peer. All others go to the system.
#pragma once

#include "tests/fuzz/Require.h"

#include <string>
#include <string_view>

#include <sys/types.h>

namespace fuzz {

/// A peer that answers receives on descriptor -1 while this object exists. Only one may exist at a
/// time.
class MemoryPeer
{
public:
    MemoryPeer();
    virtual ~MemoryPeer();
    MemoryPeer(const MemoryPeer&) = delete;
    MemoryPeer& operator=(const MemoryPeer&) = delete;

    /// Like the system call: returns the number of bytes written to the buffer, 0 when closed, or
    /// -1 with errno.
    virtual ssize_t receive(char* buffer, std::size_t limit) = 0;
    /// Takes the bytes that are written to descriptor -1.
    virtual void take(std::string_view /*bytes*/) {}
};

enum class End { Closed, Failed };

/// A peer that delivers a text in pieces of one size. After the text, every receive reports the end
/// of the connection; a parser that still keeps receiving is a finding.
class TextPeer : public MemoryPeer
{
public:
    TextPeer(std::string_view text, std::size_t pieceSize, End end)
        : m_text(text), m_pieceSize(pieceSize), m_end(end)
    {
    }

    ssize_t receive(char* buffer, std::size_t limit) override;
    void take(std::string_view bytes) override { m_written += bytes; }

    /// Returns how much of the text was received.
    std::size_t received() const { return m_received; }
    const std::string& written() const { return m_written; }

private:
    std::string_view m_text;
    std::size_t m_pieceSize;
    End m_end;
    std::size_t m_received = 0;
    int m_askedAtEnd = 0;
    std::string m_written;
};

} // namespace fuzz
