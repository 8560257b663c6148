#include "tests/kit/SilentAddress.h"

#include "tests/kit/TcpTable.h"

#include <cerrno>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace support {

namespace {

constexpr int connectLimit = 100; // milliseconds; a local connect takes almost no time
constexpr int most = 16;          // connections after which the queue must be full

} // namespace

SilentAddress::SilentAddress(const QByteArray& address, quint16 port, bool answersOnce)
    : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in place = socketAddress(address.constData(), port);
    const int on = 1;
    ::setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
        ::listen(m_listener, 0) != 0) {
        qFatal("cannot listen on %s:%d", address.constData(), port);
    }
    socklen_t size = sizeof place;
    ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&place), &size);
    m_port = ntohs(place.sin_port);
    for (int number = 0; number < most && !answersOnce; ++number) {
        const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        m_waiting.push_back(client);
        ::connect(client, reinterpret_cast<const sockaddr*>(&place), sizeof place);
        pollfd state{client, POLLOUT, 0};
        if (::poll(&state, 1, connectLimit) == 0) {
            return;
        }
    }
    if (!answersOnce) {
        qFatal("%s:%d still answers", address.constData(), m_port);
    }
}

SilentAddress::~SilentAddress()
{
    for (const int client : m_waiting) {
        ::close(client);
    }
    ::close(m_listener);
}

quint16 SilentAddress::port() const
{
    return m_port;
}

} // namespace support
