#include "tests/kit/SilentAddress.h"

#include <cerrno>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace support {

namespace {

constexpr int connectLimit = 100; // milliseconds; a local connect takes almost no time
constexpr int most = 16;          // connections after which the queue must be full

sockaddr_in socketAddress(const QByteArray& address, quint16 port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = inet_addr(address.constData());
    result.sin_port = htons(port);
    return result;
}

} // namespace

SilentAddress::SilentAddress(const QByteArray& address, quint16 port)
    : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in place = socketAddress(address, port);
    const int on = 1;
    ::setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
        ::listen(m_listener, 0) != 0) {
        qFatal("nothing can listen on %s:%d", address.constData(), port);
    }
    socklen_t size = sizeof place;
    ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&place), &size);
    m_port = ntohs(place.sin_port);
    for (int number = 0; number < most; ++number) {
        const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        m_waiting.push_back(client);
        ::connect(client, reinterpret_cast<const sockaddr*>(&place), sizeof place);
        pollfd state{client, POLLOUT, 0};
        if (::poll(&state, 1, connectLimit) == 0) {
            return;
        }
    }
    qFatal("%s:%d still answers", address.constData(), m_port);
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
