#include "tests/kit/OpenDescriptors.h"

#include <filesystem>
#include <string>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace support {

int countDescriptors(const std::function<bool(const std::string& name)>& matches,
                     const std::string& process)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/" + process + "/fd")) {
        std::error_code gone; // set if the descriptor was closed after it was listed
        const std::filesystem::path target = std::filesystem::read_symlink(entry.path(), gone);
        count += !gone && matches(target.string()) ? 1 : 0;
    }
    return count;
}

// Does not read the descriptors' targets, because the soak test calls this thousands of times with
// thousands of descriptors.
int socketsConnectedTo(const QByteArray& address, quint16 port)
{
    const in_addr_t wanted = inet_addr(address.constData());
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
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
    return countDescriptors(
        [&](const std::string& target) { return target == path.toStdString(); });
}

int openSockets()
{
    return countDescriptors(
        [](const std::string& target) { return target.rfind("socket:", 0) == 0; });
}

int openDescriptors()
{
    return countDescriptors(
        [](const std::string& target) { return target != "anon_inode:[eventfd]"; });
}

} // namespace support
