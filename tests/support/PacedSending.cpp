#include "tests/support/PacedSending.h"

#include <cstddef>

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace support {

namespace {

constexpr int highestDescriptor = 4096; // among those that are looked at
constexpr int established = 1;          // state of a connection that neither side has closed

/// False when the descriptor is no TCP socket.
bool readInfo(int descriptor, tcp_info& info)
{
    socklen_t size = sizeof info;
    return ::getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &size) == 0;
}

bool isConnectedTo(int descriptor, quint16 port)
{
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    tcp_info info{};
    return ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0
        && peer.sin_family == AF_INET && ntohs(peer.sin_port) == port
        && readInfo(descriptor, info) && info.tcpi_state == established;
}

int connectionTo(quint16 port)
{
    int descriptor = 0;
    while (descriptor <= highestDescriptor && !isConnectedTo(descriptor, port)) {
        ++descriptor;
    }
    return descriptor;
}

bool hasTaken(int descriptor, std::size_t bytes)
{
    tcp_info info{};
    int waiting = 0;
    return readInfo(descriptor, info) && info.tcpi_bytes_received >= bytes
        && ::ioctl(descriptor, FIONREAD, &waiting) == 0 && waiting == 0;
}

} // namespace

void sendPaced(Peer& peer, const std::vector<std::string>& pieces, quint16 port,
               const std::function<bool()>& readerSleeps)
{
    const int reader = connectionTo(port);
    std::size_t sent = 0;
    for (const std::string& piece : pieces) {
        peer.send(QByteArray::fromStdString(piece));
        sent += piece.size();
        peer.waitUntil([&] { return hasTaken(reader, sent) && readerSleeps(); });
    }
}

} // namespace support
