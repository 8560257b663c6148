#include "simulator/PrivateNetwork.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <set>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

namespace simulator {

namespace {

const std::string advice = "\nRun it inside a private network of its own:\n"
                           "    belun-private-network belun-simulator ...\n"
                           "That is tools/private-network in the source tree.";

} // namespace

std::string privateNetworkProblem()
{
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) {
        return std::string("cannot list the network interfaces: ") + std::strerror(errno) + advice;
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, &::freeifaddrs);
    std::set<std::string> missing = {"192.168.1.120", "192.168.1.148", "192.168.1.149"};
    for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
        const bool up = (entry->ifa_flags & IFF_UP) != 0;
        const bool loopback = (entry->ifa_flags & IFF_LOOPBACK) != 0;
        if (up && !loopback) {
            return std::string("network interface ") + entry->ifa_name + " is up" + advice;
        }
        if (up && entry->ifa_addr && entry->ifa_addr->sa_family == AF_INET) {
            sockaddr_in address{};
            std::memcpy(&address, entry->ifa_addr, sizeof address);
            char text[INET_ADDRSTRLEN] = {};
            ::inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
            missing.erase(text);
        }
    }
    if (!missing.empty()) {
        return "the loopback interface lacks the address " + *missing.begin() + advice;
    }
    return {};
}

} // namespace simulator
