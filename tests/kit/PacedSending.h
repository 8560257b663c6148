// Sends to a reader in this process so that the reader receives each piece separately.
#pragma once

#include "tests/kit/ScriptedServer.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace support {

/// The reader's end of a connection, in this process. The connection must be the only one to the
/// port that neither side has closed.
class ReadingEnd
{
public:
    explicit ReadingEnd(quint16 port);

    /// Returns whether the reader's end is still open.
    bool isOpen() const;
    /// Returns whether at least that many bytes have arrived and the reader has received all of
    /// them. Unlike Peer::isAllRead(), this does not depend on the acknowledgement, which the
    /// system delays by forty milliseconds if the reader also sends.
    bool hasTaken(std::size_t bytes) const;

private:
    int m_descriptor = 0;
    quint16 m_ownPort; // because descriptors are reused
};

/// Sends each piece after the reader has received the previous one and sleeps again, so that no
/// receive returns parts of two pieces. Returns when the reader has received the last piece or
/// closed.
void sendPaced(Peer& peer, const std::vector<std::string>& pieces, quint16 port,
               const std::function<bool()>& readerSleeps);

} // namespace support
