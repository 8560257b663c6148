// One connection to a module: receiving and watching the heartbeat.
#pragma once

#include "link/VehicleFrame.h"

#include <functional>

namespace vehicle {

/// Why a connection ended.
enum class EndReason {
    ClosedByModule, ///< The module closed the connection.
    ReceiveError,   ///< A receive failed, but not because of a signal.
    HeartbeatLost,  ///< A receive returned six or more ticks after the last heartbeat.
};

/// How a connection ended. `missedTicks` is the heartbeat count if the heartbeat was lost, else 0.
struct ConnectionEnd
{
    EndReason reason;
    int missedTicks;
};

/// Handler of the bytes of one receive.
using ReceiveHandler = std::function<void(const Received&)>;

/// Receives from the socket and calls the handler after each receive until the connection ends. The
/// ticks since the last heartbeat are checked only after a receive: while the module is silent the
/// receive blocks, and the loss is detected when the next bytes arrive. When the limit is reached,
/// the count is reset to zero.
ConnectionEnd receiveUntilEnd(int descriptor, int& heartBeatCount, const ReceiveHandler& handler);

} // namespace vehicle
