#include "link/ModuleSocket.h"

#include "link/VehicleFrame.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QThread>
#include <QtGlobal>

namespace vehicle {

namespace {

constexpr unsigned long wakeInterval = 5; // milliseconds

} // namespace

ModuleSocket::~ModuleSocket()
{
    for (const int descriptor : m_kept) {
        ::close(descriptor);
    }
}

int ModuleSocket::connectTo(const char* ip, int port)
{
    qDebug("%s new socket begin", m_moduleName);
    const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    m_newest = descriptor;
    sockaddr_in anyAddress{};
    anyAddress.sin_family = AF_INET;
    static_cast<void>(
        ::bind(descriptor, reinterpret_cast<const sockaddr*>(&anyAddress), sizeof anyAddress));
    qDebug("%s new socket bind ok", m_moduleName);

    sockaddr_in module{};
    module.sin_family = AF_INET;
    module.sin_port = htons(static_cast<std::uint16_t>(port));
    module.sin_addr.s_addr = inet_addr(ip);
    while (::connect(descriptor, reinterpret_cast<const sockaddr*>(&module), sizeof module) != 0 &&
           errno != EISCONN) { // that is: connected by a call that a signal had interrupted
        if (stopRequested()) {
            return descriptor;
        }
    }
    qDebug("%s new socket success", m_moduleName);
    return descriptor;
}

void ModuleSocket::keep(int descriptor)
{
    if (descriptor >= 0) {
        m_kept.push_back(descriptor);
    }
}

void ModuleSocket::stopAndWait(QThread& linkThread)
{
    requestStop();
    while (!linkThread.wait(wakeInterval)) {
        ::shutdown(m_newest, SHUT_RDWR);
    }
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

void blockPipeSignal()
{
    sigset_t pipeSignal;
    ::sigemptyset(&pipeSignal);
    ::sigaddset(&pipeSignal, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
}

void sendFrame(int descriptor, char type, char data)
{
    const OutgoingFrame frame = encodeFrame(type, data);
    static_cast<void>(::send(descriptor, frame.data(), frame.size(), 0));
}

} // namespace vehicle
