// The kernel's table of TCP sockets, of this network namespace.
#pragma once

#include <cstdint>
#include <vector>

#include <netinet/in.h>

namespace support {

struct TcpSocket
{
    std::uint32_t localAddress; ///< In network byte order; the ports are in host byte order.
    std::uint32_t localPort;
    std::uint32_t remoteAddress;
    std::uint32_t remotePort;
    std::uint32_t state; ///< A constant of netinet/tcp.h, such as TCP_SYN_SENT.
    std::uint32_t unread;
};

std::vector<TcpSocket> tcpSockets();

/// Returns an IPv4 address, such as "127.0.0.1", and a port as the socket calls take them.
sockaddr_in socketAddress(const char* address, int port);

/// Returns whether the other side of a connection within this namespace has read everything that
/// was sent through the descriptor.
bool isAllReadByOtherSide(int descriptor);

/// Returns whether a connection attempt to that address is pending.
bool isConnectPending(const char* address, int port);

} // namespace support
