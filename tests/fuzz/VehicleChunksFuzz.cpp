// Fuzzes receiving from a module of the vehicle.
//
// Input: steps, each starting with a byte: 0 is a tick without a heartbeat, FF a receive
// interrupted by a signal, any other number the count of the following bytes, which the module
// sends at once.
#include "link/ReceiveLoop.h"
#include "tests/fuzz/MemoryPeer.h"

#include <algorithm>
#include <cerrno>

namespace {

constexpr std::size_t longestReceive = 100;
constexpr int tickLimit = 6;

/// A module that plays the steps. The handler must be given the bytes of the last receive, which
/// last() returns.
class Module : public fuzz::MemoryPeer
{
public:
    Module(const std::string& steps, fuzz::End end, int& ticks)
        : m_steps(steps), m_end(end), m_ticks(ticks)
    {
    }

    ssize_t receive(char* buffer, std::size_t limit) override
    {
        fuzz::require(limit == longestReceive, "receives take a hundred bytes");
        fuzz::require(!m_ended, "nothing is received after the end");
        fuzz::require(m_ticks < tickLimit, "six ticks without a heartbeat end a connection");
        while (m_pending.empty() && m_next < m_steps.size()) {
            const auto step = static_cast<std::uint8_t>(m_steps[m_next++]);
            if (step == 0xFF) {
                errno = EINTR;
                return -1;
            }
            if (step == 0) {
                ++m_ticks;
            }
            m_pending = m_steps.substr(m_next, step);
            m_next += m_pending.size();
        }
        const std::size_t count = std::min(m_pending.size(), limit);
        if (count == 0) {
            m_ended = true;
            errno = m_end == fuzz::End::Failed ? ECONNRESET : 0;
            return m_end == fuzz::End::Failed ? -1 : 0;
        }
        m_pending.copy(buffer, count);
        m_last = m_pending.substr(0, count);
        m_pending.erase(0, count);
        ++m_deliveries;
        return static_cast<ssize_t>(count);
    }

    const std::string& last() const { return m_last; }
    int deliveries() const { return m_deliveries; }
    bool ended() const { return m_ended; }

private:
    const std::string& m_steps;
    fuzz::End m_end;
    int& m_ticks;
    std::size_t m_next = 0;
    std::string m_pending;
    std::string m_last;
    int m_deliveries = 0;
    bool m_ended = false;
};

/// Returns a delivered byte as an unsigned number, 0 after the end.
int byteAt(const std::string& delivered, std::size_t index)
{
    return index < delivered.size() ? static_cast<std::uint8_t>(delivered[index]) : 0;
}

int signedByteAt(const std::string& delivered, std::size_t index)
{
    const int byte = byteAt(delivered, index);
    return byte < 128 ? byte : byte - 256;
}

int signedPairAt(const std::string& delivered, std::size_t index)
{
    return signedByteAt(delivered, index) * 256 + signedByteAt(delivered, index + 1);
}

void checkReceived(const vehicle::Received& received, const std::string& delivered)
{
    fuzz::require(std::equal(delivered.begin(), delivered.end(), received.begin(),
                             [](char sent, std::uint8_t got) {
                                 return static_cast<std::uint8_t>(sent) == got;
                             }),
                  "the handler gets the bytes of one receive");
    fuzz::require(std::all_of(received.begin() + static_cast<std::ptrdiff_t>(delivered.size()),
                              received.end(), [](std::uint8_t byte) { return byte == 0; }),
                  "the buffer is zero after the received bytes");

    const int start = byteAt(delivered, 0);
    const int type = byteAt(delivered, 2);
    const auto report = vehicle::decodeVersionReport(received);
    fuzz::require(report.has_value() == (start == 0xAA && type == 0x00),
                  "a version report is recognised by its start byte and type");
    if (report) {
        fuzz::require(report->hardType == signedByteAt(delivered, 4),
                      "the hardware type is signed");
        fuzz::require(report->hardVer == signedPairAt(delivered, 5) &&
                          report->softVer == signedPairAt(delivered, 7) &&
                          report->protocolVer == signedPairAt(delivered, 9) &&
                          report->bootVer == signedPairAt(delivered, 11),
                      "the versions are pairs of signed bytes");
    }
    fuzz::require(vehicle::isHeartbeat(received, vehicle::controlStartByte) ==
                      (start == 0xAA && type == 0x04),
                  "the control module's heartbeat");
    fuzz::require(vehicle::isHeartbeat(received, vehicle::groundStartByte) ==
                      (start == 0xBB && type == 0x04),
                  "the ground module's heartbeat");

    const int data = byteAt(delivered, 4);
    const vehicle::OutgoingFrame frame =
        vehicle::encodeFrame(static_cast<char>(type), static_cast<char>(data));
    fuzz::require(frame[0] == 0xAA && frame[1] == 0xAF && frame[2] == type && frame[3] == 1 &&
                      frame[4] == data && frame[5] == (type + data + 0x5A) % 256,
                  "a frame of ours is whole");
}

void judge(const std::string& steps, fuzz::End end, std::uint8_t startByte)
{
    int ticks = 0;
    int handled = 0;
    Module module(steps, end, ticks);
    const vehicle::ConnectionEnd result =
        vehicle::receiveUntilEnd(-1, ticks, [&](const vehicle::Received& received) {
            ++handled;
            checkReceived(received, module.last());
            if (vehicle::isHeartbeat(received, startByte)) {
                ticks = 0;
            }
        });
    fuzz::require(handled == module.deliveries(), "the handler is called once per receive");
    if (result.reason == vehicle::EndReason::HeartbeatLost) {
        fuzz::require(result.missedTicks >= tickLimit && ticks == 0,
                      "a lost heartbeat is reported after six ticks, and the count restarts");
    } else {
        fuzz::require(module.ended(), "a connection ends by the module or the heartbeat limit");
        fuzz::require(result.missedTicks == 0, "no ticks are missed otherwise");
        fuzz::require((result.reason == vehicle::EndReason::ClosedByModule) ==
                          (end == fuzz::End::Closed),
                      "closing and failing are distinguished");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string steps = fuzz::textOf(data, size);
    judge(steps, fuzz::End::Closed, vehicle::controlStartByte);
    judge(steps, fuzz::End::Failed, vehicle::groundStartByte);
    return 0;
}
