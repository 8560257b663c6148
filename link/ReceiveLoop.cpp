#include "link/ReceiveLoop.h"

#include <cerrno>

#include <sys/socket.h>

namespace vehicle {

namespace {

constexpr int heartbeatLimit = 6; // ticks of one second

} // namespace

ConnectionEnd receiveUntilEnd(int descriptor, int& heartBeatCount, const ReceiveHandler& handler)
{
    for (;;) {
        Received received{};
        const ssize_t count = ::recv(descriptor, received.data(), received.size(), 0);
        if (count == 0) {
            return {EndReason::ClosedByModule, 0};
        }
        if (count > 0) {
            handler(received);
        } else if (errno != EINTR) {
            return {EndReason::ReceiveError, 0};
        }
        if (heartBeatCount >= heartbeatLimit) {
            const int missedTicks = heartBeatCount;
            heartBeatCount = 0;
            return {EndReason::HeartbeatLost, missedTicks};
        }
    }
}

} // namespace vehicle
