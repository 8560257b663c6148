// Sends to a reader in this process so that it receives each piece separately.
#pragma once

#include "tests/kit/ScriptedServer.h"

#include <functional>
#include <string>
#include <vector>

namespace support {

/// Sends each piece after the reader has received the previous one and sleeps again, so that no
/// receive returns parts of two pieces. Returns when the reader has received the last piece or
/// closed. The reader is the only connection of this process to the port that neither side has
/// closed. Unlike Peer::waitUntilRead(), this does not wait for the acknowledgement, which the
/// system delays by forty milliseconds if the reader also sends.
void sendPaced(Peer& peer, const std::vector<std::string>& pieces, quint16 port,
               const std::function<bool()>& readerSleeps);

} // namespace support
