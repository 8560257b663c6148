#include "link/ModuleSocket.h"

#include "link/VehicleFrame.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <QtGlobal>

namespace vehicle {

int connectToModule(sys::StoppableCalls& calls, const char* moduleName, const char* ip, int port)
{
    sys::StoppableCalls::Call call(calls);
    qDebug("%s new socket begin", moduleName);
    const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    call.waitOn(descriptor);
    sockaddr_in anyAddress{};
    anyAddress.sin_family = AF_INET;
    static_cast<void>(
        ::bind(descriptor, reinterpret_cast<const sockaddr*>(&anyAddress), sizeof anyAddress));
    qDebug("%s new socket bind ok", moduleName);

    sockaddr_in module{};
    module.sin_family = AF_INET;
    module.sin_port = htons(static_cast<std::uint16_t>(port));
    module.sin_addr.s_addr = inet_addr(ip);
    while (::connect(descriptor, reinterpret_cast<const sockaddr*>(&module), sizeof module) != 0 &&
           errno != EISCONN) { // EISCONN: an earlier, interrupted call has connected the socket
        if (calls.stopRequested()) {
            return descriptor;
        }
    }
    qDebug("%s new socket success", moduleName);
    return descriptor;
}

int localAddress(int descriptor, char* ip)
{
    sockaddr_in local{};
    socklen_t size = sizeof local;
    if (::getsockname(descriptor, reinterpret_cast<sockaddr*>(&local), &size) != 0) {
        std::puts("Get IP failed");
        std::fflush(stdout);
    }
    inet_ntop(AF_INET, &local.sin_addr, ip, INET_ADDRSTRLEN);
    return static_cast<int>(std::strlen(ip));
}

void sendFrame(int descriptor, char type, char data)
{
    const OutgoingFrame frame = encodeFrame(type, data);
    static_cast<void>(::send(descriptor, frame.data(), frame.size(), 0));
}

} // namespace vehicle
