// One connection to a module: receiving and watching the heartbeat.
#pragma once

#include "link/VehicleFrame.h"

#include <functional>

namespace vehicle {

/// The reason for the end of a connection.
enum class EndReason {
    ClosedByModule, ///< The module closed the connection.
    ReceiveError,   ///< A receive failed with an error other than EINTR.
    HeartbeatLost,  ///< The heartbeat count was six or more after a receive.
};

/// The end of a connection. `missedTicks` is the heartbeat count if the heartbeat was lost, else 0.
struct ConnectionEnd
{
    EndReason reason;
    int missedTicks;
};

/// Handler of the bytes of one receive.
using ReceiveHandler = std::function<void(const Received&)>;

/// Receives from the socket until the connection ends, and calls the handler after each receive
/// that returned bytes. Checks the heartbeat count only after a receive: while the module is
/// silent, recv() blocks, and the loss of the heartbeat is detected when recv() returns. On a loss,
/// resets the count to zero.
ConnectionEnd receiveUntilEnd(int descriptor, int& heartBeatCount, const ReceiveHandler& handler);

} // namespace vehicle
