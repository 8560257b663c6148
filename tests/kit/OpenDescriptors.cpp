#include "tests/kit/OpenDescriptors.h"

#include <filesystem>
#include <string>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace support {

namespace {

const std::filesystem::path descriptors = "/proc/self/fd";

/// Counts the descriptors whose target satisfies `matches`.
template <class Predicate>
int countTargets(Predicate matches)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(descriptors)) {
        std::error_code gone; // set if the descriptor was closed after it was listed
        const std::filesystem::path target = std::filesystem::read_symlink(entry.path(), gone);
        if (!gone && matches(target.string())) {
            ++count;
        }
    }
    return count;
}

} // namespace

// Does not read the descriptors' targets, because the soak test calls this thousands of times with
// thousands of descriptors.
int socketsConnectedTo(const QByteArray& address, quint16 port)
{
    const in_addr_t wanted = inet_addr(address.constData());
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(descriptors)) {
        const int descriptor = std::stoi(entry.path().filename().string());
        sockaddr_in peer{};
        socklen_t size = sizeof peer;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
            peer.sin_family == AF_INET && peer.sin_addr.s_addr == wanted &&
            ntohs(peer.sin_port) == port) {
            ++count;
        }
    }
    return count;
}

int descriptorsOn(const QByteArray& path)
{
    return countTargets([&](const std::string& target) { return target == path.toStdString(); });
}

int openSockets()
{
    return countTargets([](const std::string& target) { return target.rfind("socket:", 0) == 0; });
}

int openDescriptors()
{
    return countTargets([](const std::string& target) { return target != "anon_inode:[eventfd]"; });
}

} // namespace support
