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

} // namespace

ReadingEnd::ReadingEnd(quint16 port)
{
    while (m_descriptor <= highestDescriptor && (portOf(m_descriptor, ::getpeername) != port ||
                                                 infoOf(m_descriptor).tcpi_state != established)) {
        ++m_descriptor;
    }
    m_ownPort = portOf(m_descriptor, ::getsockname);
}

bool ReadingEnd::isOpen() const
{
    return m_ownPort != 0 && portOf(m_descriptor, ::getsockname) == m_ownPort;
}

bool ReadingEnd::hasTaken(std::size_t bytes) const
{
    int waiting = 0;
    return infoOf(m_descriptor).tcpi_bytes_received >= bytes &&
           ::ioctl(m_descriptor, FIONREAD, &waiting) == 0 && waiting == 0;
}

void sendPaced(Peer& peer, const std::vector<std::string>& pieces, quint16 port,
               const std::function<bool()>& readerSleeps)
{
    const ReadingEnd reader(port);
    std::size_t sent = 0;
    for (const std::string& piece : pieces) {
        if (!reader.isOpen()) {
            return;
        }
        peer.send(QByteArray::fromStdString(piece));
        sent += piece.size();
        peer.waitUntil(
            [&] { return (reader.hasTaken(sent) || !reader.isOpen()) && readerSleeps(); });
    }
}

} // namespace support
