#include "tests/kit/TcpTable.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace support {

std::vector<TcpSocket> tcpSockets()
{
    std::vector<TcpSocket> sockets;
    std::ifstream table("/proc/net/tcp");
    std::string line;
    while (std::getline(table, line)) {
        TcpSocket socket{};
        // number: local remote state unacknowledged:unread ...; the first line is a heading
        if (std::sscanf(line.c_str(), "%*d: %8X:%4X %8X:%4X %2X %*8X:%8X", &socket.localAddress,
                        &socket.localPort, &socket.remoteAddress, &socket.remotePort, &socket.state,
                        &socket.unread) == 6) {
            sockets.push_back(socket);
        }
    }
    return sockets;
}

sockaddr_in socketAddress(const char* address, int port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = inet_addr(address);
    result.sin_port = htons(static_cast<std::uint16_t>(port));
    return result;
}

bool isAllReadByOtherSide(int descriptor)
{
    int unacknowledged = 0;
    sockaddr_in own{};
    sockaddr_in other{};
    socklen_t size = sizeof own;
    ::ioctl(descriptor, SIOCOUTQ, &unacknowledged);
    ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &size);
    size = sizeof other;
    ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&other), &size);
    const std::vector<TcpSocket> sockets = tcpSockets();
    return unacknowledged == 0 &&
           std::none_of(sockets.begin(), sockets.end(), [&](const TcpSocket& socket) {
               return socket.localAddress == other.sin_addr.s_addr &&
                      socket.localPort == ntohs(other.sin_port) &&
                      socket.remoteAddress == own.sin_addr.s_addr &&
                      socket.remotePort == ntohs(own.sin_port) && socket.unread > 0;
           });
}

bool isConnectPending(const char* address, int port)
{
    const sockaddr_in place = socketAddress(address, port);
    const std::vector<TcpSocket> sockets = tcpSockets();
    return std::any_of(sockets.begin(), sockets.end(), [&](const TcpSocket& socket) {
        return socket.state == TCP_SYN_SENT && socket.remoteAddress == place.sin_addr.s_addr &&
               socket.remotePort == ntohs(place.sin_port);
    });
}

} // namespace support
