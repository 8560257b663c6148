#include "tests/kit/PacedSending.h"

#include <cstddef>

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace support {

namespace {

constexpr int highestDescriptor = 4096; // the highest one that is checked
constexpr int established = 1;          // state of a connection that neither side has closed

/// A connection, identified by its descriptor and its own port, because descriptors are reused.
struct Connection
{
    int descriptor;
    quint16 ownPort;
};

quint16 portOf(int descriptor, decltype(::getsockname)* name)
{
    sockaddr_in place{};
    socklen_t size = sizeof place;
    const bool known = name(descriptor, reinterpret_cast<sockaddr*>(&place), &size) == 0 &&
                       place.sin_family == AF_INET;
    return known ? ntohs(place.sin_port) : quint16{0};
}

tcp_info infoOf(int descriptor)
{
    tcp_info info{};
    socklen_t size = sizeof info;
    ::getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &size);
    return info;
}

Connection connectionTo(quint16 port)
{
    int descriptor = 0;
    while (descriptor <= highestDescriptor && (portOf(descriptor, ::getpeername) != port ||
                                               infoOf(descriptor).tcpi_state != established)) {
        ++descriptor;
    }
    return {descriptor, portOf(descriptor, ::getsockname)};
}

bool stands(const Connection& connection)
{
    return connection.ownPort != 0 &&
           portOf(connection.descriptor, ::getsockname) == connection.ownPort;
}

bool hasTaken(const Connection& connection, std::size_t bytes)
{
    int waiting = 0;
    return infoOf(connection.descriptor).tcpi_bytes_received >= bytes &&
           ::ioctl(connection.descriptor, FIONREAD, &waiting) == 0 && waiting == 0;
}

} // namespace

void sendPaced(Peer& peer, const std::vector<std::string>& pieces, quint16 port,
               const std::function<bool()>& readerSleeps)
{
    const Connection reader = connectionTo(port);
    std::size_t sent = 0;
    for (const std::string& piece : pieces) {
        if (!stands(reader)) {
            return;
        }
        peer.send(QByteArray::fromStdString(piece));
        sent += piece.size();
        peer.waitUntil(
            [&] { return (hasTaken(reader, sent) || !stands(reader)) && readerSleeps(); });
    }
}

} // namespace support
