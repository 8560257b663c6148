#include "tests/support/OpenDescriptors.h"

#include <filesystem>
#include <string>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace support {

namespace {

/// Counts the descriptors for which `matches` is true of number and target.
template <class Predicate>
int countDescriptors(Predicate matches)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone; // the descriptor of this very listing, for one
        const std::filesystem::path target = std::filesystem::read_symlink(entry.path(), gone);
        if (!gone && matches(std::stoi(entry.path().filename().string()), target.string())) {
            ++count;
        }
    }
    return count;
}

} // namespace

int socketsConnectedTo(const QByteArray& address, quint16 port)
{
    const in_addr_t wanted = inet_addr(address.constData());
    return countDescriptors([&](int descriptor, const std::string&) {
        sockaddr_in peer{};
        socklen_t size = sizeof peer;
        return ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
               peer.sin_family == AF_INET && peer.sin_addr.s_addr == wanted &&
               ntohs(peer.sin_port) == port;
    });
}

int descriptorsOn(const QByteArray& path)
{
    return countDescriptors(
        [&](int, const std::string& target) { return target == path.toStdString(); });
}

int openSockets()
{
    return countDescriptors(
        [](int, const std::string& target) { return target.rfind("socket:", 0) == 0; });
}

int openDescriptors()
{
    return countDescriptors(
        [](int, const std::string& target) { return target != "anon_inode:[eventfd]"; });
}

} // namespace support
