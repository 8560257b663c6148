#include "simulator/Listener.h"

#include <cerrno>
#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace simulator {

namespace {

constexpr int usualBacklog = 128;

sockaddr_in socketAddress(const std::string& address, std::uint16_t port)
{
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    ::inet_pton(AF_INET, address.c_str(), &place.sin_addr);
    return place;
}

FileDescriptor newSocket()
{
    return FileDescriptor(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

} // namespace

Listener::Listener(std::string address, std::uint16_t port)
    : m_address(std::move(address)), m_port(port)
{
}

std::string Listener::become(Reachability reachability)
{
    if (reachability == m_reachability) {
        return {};
    }
    // Switching between Listening and Unheard loses nothing: queued connections are accepted later.
    const auto open = [](Reachability r) {
        return r == Reachability::Listening || r == Reachability::Unheard;
    };
    std::string error;
    if (!open(reachability) || !open(m_reachability)) {
        m_filler.reset();
        m_socket.reset();
        if (open(reachability)) {
            error = listen(usualBacklog);
        } else if (reachability == Reachability::Deaf) {
            error = listen(0);
            if (error.empty()) {
                error = fillQueue();
            }
        }
    }
    m_reachability = error.empty() ? reachability : Reachability::Refusing;
    return error;
}

std::string Listener::listen(int backlog)
{
    m_socket = newSocket();
    const int on = 1;
    const sockaddr_in place = socketAddress(m_address, m_port);
    if (!m_socket.valid() ||
        ::setsockopt(m_socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        ::bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
        ::listen(m_socket.get(), backlog) != 0) {
        std::string error = m_address + ":" + std::to_string(m_port) + ": " + std::strerror(errno);
        m_socket.reset();
        return error;
    }
    return {};
}

std::string Listener::fillQueue()
{
    // When the queue of a socket is full, the system drops further connection requests without a
    // reply.
    m_filler = newSocket();
    const sockaddr_in place = socketAddress(m_address, m_port);
    const int result =
        ::connect(m_filler.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place);
    if (result != 0 && errno != EINPROGRESS) {
        return m_address + ": " + std::strerror(errno);
    }
    return {};
}

int Listener::descriptor() const
{
    return m_reachability == Reachability::Listening ? m_socket.get() : -1;
}

FileDescriptor Listener::accept(std::string& peer)
{
    sockaddr_in place{};
    socklen_t length = sizeof place;
    FileDescriptor socket(::accept4(m_socket.get(), reinterpret_cast<sockaddr*>(&place), &length,
                                    SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket.valid()) {
        const int on = 1;
        ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        char text[INET_ADDRSTRLEN] = {};
        ::inet_ntop(AF_INET, &place.sin_addr, text, sizeof text);
        peer = std::string(text) + ":" + std::to_string(ntohs(place.sin_port));
    }
    return socket;
}

} // namespace simulator
