// A peer in memory. A target is linked with --wrap for `recv`, `read` or `write`, so that the
// product's call on descriptor -1, the one it has while no socket is open, ends up here. Every
// other descriptor goes to the system.
#pragma once

#include "tests/fuzz/Require.h"

#include <string>
#include <string_view>

#include <sys/types.h>

namespace fuzz {

/// Answers the receives on descriptor -1 while it lives; one at a time.
class MemoryPeer
{
public:
    MemoryPeer();
    virtual ~MemoryPeer();
    MemoryPeer(const MemoryPeer&) = delete;
    MemoryPeer& operator=(const MemoryPeer&) = delete;

    /// As the system call: what it wrote into the buffer, 0 when closed, -1 with errno.
    virtual ssize_t receive(char* buffer, std::size_t limit) = 0;
    /// Takes what is written to descriptor -1.
    virtual void take(std::string_view /*bytes*/) {}
};

enum class End { Closed, Failed };

/// Delivers a text in pieces of one size, then its end, as often as it is asked. A reader that goes
/// on asking without end is a finding.
class TextPeer : public MemoryPeer
{
public:
    TextPeer(std::string_view text, std::size_t pieceSize, End end)
        : m_text(text), m_pieceSize(pieceSize), m_end(end)
    {
    }

    ssize_t receive(char* buffer, std::size_t limit) override;
    void take(std::string_view bytes) override { m_written += bytes; }

    /// How much of the text was received.
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
