// Sending to a reader in this process so that it sees each piece by itself.
#pragma once

#include "tests/support/ScriptedServer.h"

#include <functional>
#include <string>
#include <vector>

namespace support {

/// Sends each piece when the reader has received the one before and sleeps again, so that no
/// receive of its returns parts of two; returns when it has received the last one, or has closed.
/// The reader is the one connection of this process to the port that neither side has closed.
/// Unlike Peer::waitUntilRead() this does not wait for the acknowledgement, which a connection that
/// sends too delays by forty milliseconds.
void sendPaced(Peer& peer, const std::vector<std::string>& pieces, quint16 port,
               const std::function<bool()>& readerSleeps);

} // namespace support
