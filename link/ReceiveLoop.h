// One connection to a module: receive, hand over, watch the heartbeat.
#pragma once

#include "link/VehicleFrame.h"

#include <functional>

namespace vehicle {

/// Why a connection ended.
enum class EndReason {
    ClosedByModule, ///< The module closed the connection.
    ReceiveError,   ///< A receive failed other than by a signal.
    HeartbeatLost,  ///< Something arrived six or more ticks after the last heartbeat.
};

/// How a connection ended. `missedTicks` is the heartbeat count that ended it, 0 otherwise.
struct ConnectionEnd
{
    EndReason reason;
    int missedTicks;
};

/// Sees every chunk that arrives.
using ChunkHandler = std::function<void(const Chunk&)>;

/// Receives from the socket and hands each chunk to the handler until the connection ends. The
/// count of ticks since the last heartbeat is compared after each receive only: while the module is
/// silent the receive blocks, and the loss shows with the next bytes. When the limit is hit, the
/// count is set to zero.
ConnectionEnd receiveUntilEnd(int descriptor, int& heartBeatCount, const ChunkHandler& handler);

} // namespace vehicle
