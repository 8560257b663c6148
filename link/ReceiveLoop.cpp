#include "link/ReceiveLoop.h"

#include <cerrno>

#include <sys/socket.h>

namespace vehicle {

namespace {

constexpr int heartbeatLimit = 6; // ticks of one second

} // namespace

ConnectionEnd receiveUntilEnd(int descriptor, int& heartBeatCount, const ChunkHandler& handler)
{
    for (;;) {
        Chunk chunk{};
        const ssize_t received = ::recv(descriptor, chunk.data(), chunk.size(), 0);
        if (received == 0) {
            return {EndReason::ClosedByModule, 0};
        }
        if (received > 0) {
            handler(chunk);
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
