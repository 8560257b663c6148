#include "simulator/ControlSocket.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>

namespace simulator {

namespace {

constexpr std::size_t mostUnsent = 4'194'304;
constexpr int answerLimit = 20; // seconds

sockaddr_un socketAddress(const std::string& path)
{
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    std::memcpy(place.sun_path, path.data(), path.size());
    return place;
}

int connectTo(const FileDescriptor& socket, const std::string& path)
{
    const sockaddr_un place = socketAddress(path);
    return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place);
}

/// Removes a stale socket at the path, if there is one. Returns an error text if something else is
/// there or the socket cannot be removed.
std::string removeDead(const std::string& path)
{
    struct stat status
    {
    };
    if (::lstat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? std::string() : path + ": " + std::strerror(errno);
    }
    if (!S_ISSOCK(status.st_mode)) {
        return path + " is a file, not a socket; it was not changed";
    }
    const FileDescriptor probe(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (connectTo(probe, path) == 0 || errno != ECONNREFUSED) {
        return path + " is the socket of a program that runs";
    }
    return ::unlink(path.c_str()) == 0 || errno == ENOENT ? std::string()
                                                          : path + ": " + std::strerror(errno);
}

bool isLastLine(const std::string& line)
{
    return line.compare(0, 3, "ok ") == 0 || line.compare(0, 6, "error ") == 0;
}

} // namespace

ControlSocket::~ControlSocket()
{
    struct stat status
    {
    };
    if (m_socket.valid() && ::lstat(m_path.c_str(), &status) == 0 && status.st_dev == m_device &&
        status.st_ino == m_inode) {
        ::unlink(m_path.c_str());
    }
}

std::string ControlSocket::open(const std::string& path)
{
    if (std::string error = removeDead(path); !error.empty()) {
        return error;
    }
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const sockaddr_un place = socketAddress(path);
    // The mode is set when the file is created, so that no other user can ever connect.
    const mode_t mask = ::umask(0177);
    const int bound = ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place);
    const int bindError = errno;
    ::umask(mask);
    if (bound != 0) {
        return path + ": " + std::strerror(bindError);
    }
    struct stat status
    {
    };
    if (::listen(socket.get(), SOMAXCONN) != 0 || ::lstat(path.c_str(), &status) != 0) {
        return path + ": " + std::strerror(errno);
    }
    m_socket = std::move(socket);
    m_path = path;
    m_device = status.st_dev;
    m_inode = status.st_ino;
    return {};
}

void ControlSocket::addTo(std::vector<pollfd>& descriptors) const
{
    if (m_socket.valid()) {
        descriptors.push_back({m_socket.get(), POLLIN, 0});
    }
    for (const Client& client : m_clients) {
        const auto events =
            static_cast<short>((client.ended ? 0 : POLLIN) | (client.unsent.empty() ? 0 : POLLOUT));
        descriptors.push_back({client.socket.get(), events, 0});
    }
}

void ControlSocket::acceptAll()
{
    while (m_socket.valid()) {
        FileDescriptor socket(
            ::accept4(m_socket.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!socket.valid()) {
            return;
        }
        m_clients.push_back({std::move(socket)});
    }
}

void ControlSocket::read(const std::function<std::vector<std::string>(const std::string&)>& answer)
{
    acceptAll();
    for (Client& client : m_clients) {
        char buffer[4'096];
        const ssize_t count =
            client.ended ? -1 : ::recv(client.socket.get(), buffer, sizeof buffer, MSG_DONTWAIT);
        if (count < 0) {
            client.ended = client.ended || (errno != EAGAIN && errno != EINTR);
            continue;
        }
        if (count == 0) {
            client.ended = true;
            continue;
        }
        client.lines.add({buffer, static_cast<std::size_t>(count)});
        while (const auto line = client.lines.next()) {
            for (const std::string& reply : answer(*line)) {
                client.unsent += reply + "\n";
            }
        }
        if (client.lines.dropOverlong()) {
            client.unsent += "error the line is too long\n";
        }
    }
}

void ControlSocket::flush()
{
    m_clients.remove_if([](Client& client) {
        while (!client.unsent.empty()) {
            const ssize_t count = ::send(client.socket.get(), client.unsent.data(),
                                         client.unsent.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0) {
                return (errno != EAGAIN && errno != EWOULDBLOCK) ||
                       client.unsent.size() > mostUnsent;
            }
            client.unsent.erase(0, static_cast<std::size_t>(count));
        }
        return client.ended;
    });
}

std::string sendControlLines(const std::string& path, const std::vector<std::string>& lines,
                             bool& allFine)
{
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const timeval limit{answerLimit, 0};
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    if (connectTo(socket, path) != 0) {
        return path + ": " + std::strerror(errno);
    }
    LineReader answers;
    allFine = true;
    for (const std::string& line : lines) {
        const std::string text = line + "\n";
        if (::send(socket.get(), text.data(), text.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(text.size())) {
            return path + ": " + std::strerror(errno);
        }
        for (bool last = false; !last;) {
            const auto answer = answers.next();
            if (answer) {
                std::puts(answer->c_str());
                last = isLastLine(*answer);
                allFine = allFine && answer->compare(0, 6, "error ") != 0;
                continue;
            }
            char buffer[4'096];
            const ssize_t count = ::recv(socket.get(), buffer, sizeof buffer, 0);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                return path + ": no answer to \"" + line + "\"" +
                       (count == 0 ? ": the simulator has ended" : "");
            }
            answers.add({buffer, static_cast<std::size_t>(count)});
        }
    }
    return {};
}

} // namespace simulator
