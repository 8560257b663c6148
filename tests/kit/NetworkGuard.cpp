#include "tests/kit/NetworkGuard.h"

#include <memory>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <QStringList>

namespace support {

QString whyNotInPrivateNetwork()
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) {
        return QStringLiteral("The network interfaces cannot be listed.");
    }
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> all(first, ::freeifaddrs);
    QStringList missing{QStringLiteral("192.168.1.148"), QStringLiteral("192.168.1.149"),
                        QStringLiteral("192.168.1.120")};
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        if ((entry->ifa_flags & IFF_UP) == 0) {
            continue;
        }
        if ((entry->ifa_flags & IFF_LOOPBACK) == 0) {
            return QStringLiteral("The network interface %1 is up.")
                .arg(QString::fromLocal8Bit(entry->ifa_name));
        }
        if (entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET) {
            char text[INET_ADDRSTRLEN] = {};
            const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
            inet_ntop(AF_INET, &address->sin_addr, text, sizeof text);
            missing.removeAll(QString::fromLatin1(text));
        }
    }
    return missing.isEmpty() ? QString()
                             : QStringLiteral("The loopback interface lacks %1.")
                                   .arg(missing.join(QStringLiteral(", ")));
}

} // namespace support
