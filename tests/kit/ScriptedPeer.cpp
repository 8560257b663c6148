// The script's side of a connection.
#include "tests/kit/ScriptEnd.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/TcpTable.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace support {

using Clock = std::chrono::steady_clock;

Peer::Peer(int descriptor, int number, const std::atomic<bool>& stopping)
    : m_descriptor(descriptor), m_number(number), m_stopping(stopping)
{
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Peer::~Peer()
{
    close();
}

void Peer::waitUntilReadable(Clock::time_point deadline, const char* waitedFor)
{
    for (;;) {
        if (m_stopping) {
            throw ScriptStopped{};
        }
        pollfd state{m_descriptor, POLLIN, 0};
        if (::poll(&state, 1, scriptStep) > 0) {
            return;
        }
        if (Clock::now() > deadline) {
            throw ScriptFailed{QStringLiteral("%1 did not arrive; received: \"%2\"")
                                   .arg(QString::fromLatin1(waitedFor),
                                        QString::fromLatin1(m_pending.left(2000)))};
        }
    }
}

bool Peer::receiveMore(Clock::time_point deadline, const char* waitedFor)
{
    waitUntilReadable(deadline, waitedFor);
    return takeArrived();
}

bool Peer::takeArrived()
{
    char buffer[4096];
    const ssize_t count = ::recv(m_descriptor, buffer, sizeof buffer, 0);
    if (count <= 0) {
        m_open = m_open && count < 0 && errno == EAGAIN;
        return false;
    }
    m_pending.append(buffer, static_cast<int>(count));
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_received.append(buffer, static_cast<int>(count));
    return true;
}

QByteArray Peer::takePending(int count)
{
    const QByteArray taken = m_pending.left(count);
    m_pending.remove(0, count);
    return taken;
}

QByteArray Peer::receiveUntil(const QByteArray& marker)
{
    const Clock::time_point deadline = Clock::now() + scriptPatience;
    while (!m_pending.contains(marker)) {
        if (!receiveMore(deadline, "the marker")) {
            throw ScriptFailed{QStringLiteral("closed by the client before the marker")};
        }
    }
    return takePending(static_cast<int>(m_pending.indexOf(marker) + marker.size()));
}

QByteArray Peer::receiveExactly(int count)
{
    const Clock::time_point deadline = Clock::now() + scriptPatience;
    while (m_pending.size() < count) {
        if (!receiveMore(deadline, "the announced number of bytes")) {
            throw ScriptFailed{QStringLiteral("closed by the client after %1 of %2 bytes")
                                   .arg(m_pending.size())
                                   .arg(count)};
        }
    }
    return takePending(count);
}

void Peer::waitUntilClosedByClient()
{
    const Clock::time_point deadline = Clock::now() + scriptPatience;
    while (receiveMore(deadline, "the client's close")) {
    }
    m_pending.clear();
}

void Peer::send(const QByteArray& bytes)
{
    const QString reason = trySend(bytes);
    if (!reason.isEmpty()) {
        throw ScriptFailed{reason};
    }
}

QString Peer::trySend(const QByteArray& bytes)
{
    const Clock::time_point deadline = Clock::now() + scriptPatience;
    int sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = sendNow(bytes.constData() + sent, bytes.size() - sent);
        if (count >= 0) {
            sent += static_cast<int>(count);
            continue;
        }
        if (count != -EAGAIN && count != -EINTR) {
            return QStringLiteral("sending failed after %1 of %2 bytes: %3")
                .arg(sent)
                .arg(bytes.size())
                .arg(QString::fromLocal8Bit(std::strerror(static_cast<int>(-count))));
        }
        if (m_stopping) {
            throw ScriptStopped{};
        }
        if (Clock::now() > deadline) {
            return QStringLiteral("the client took %1 of %2 bytes only")
                .arg(sent)
                .arg(bytes.size());
        }
        pollfd state{m_descriptor, POLLOUT, 0};
        ::poll(&state, 1, scriptStep);
    }
    return {};
}

ssize_t Peer::sendNow(const char* bytes, qint64 count)
{
    const std::lock_guard<std::mutex> lock(m_descriptorMutex);
    const ssize_t sent =
        ::send(m_descriptor, bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL | MSG_DONTWAIT);
    return sent >= 0 ? sent : -errno;
}

void Peer::sendInPieces(const QByteArray& bytes, const std::vector<int>& cuts)
{
    int begin = 0;
    for (const int cut : cuts) {
        send(bytes.mid(begin, cut - begin));
        waitUntilRead();
        begin = cut;
    }
    send(bytes.mid(begin));
    waitUntilRead();
}

void Peer::sendBytewise(const QByteArray& bytes)
{
    for (const char byte : bytes) {
        send(QByteArray(1, byte));
        waitUntilRead();
    }
}

bool Peer::isAllRead() const
{
    const std::lock_guard<std::mutex> lock(m_descriptorMutex);
    return isAllReadByOtherSide(m_descriptor);
}

void Peer::waitUntilRead()
{
    waitUntil([this] { return isAllRead(); });
}

void Peer::waitUntil(const std::function<bool()>& condition)
{
    const Clock::time_point deadline = Clock::now() + scriptPatience;
    while (!condition()) {
        if (m_stopping) {
            throw ScriptStopped{};
        }
        if (Clock::now() > deadline) {
            throw ScriptFailed{QStringLiteral("what the script waited for did not happen")};
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

void Peer::holdOpen()
{
    constexpr std::chrono::hours ever{1};
    while (receiveMore(Clock::now() + ever, "the server's end")) {
    }
    while (!m_stopping) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    throw ScriptStopped{};
}

void Peer::serve()
{
    while (m_wantedEnd == End::None) {
        if (m_stopping) {
            throw ScriptStopped{};
        }
        pollfd state{m_descriptor, POLLIN, 0};
        if (::poll(&state, 1, scriptStep) > 0 && !takeArrived()) {
            return;
        }
    }
    if (m_wantedEnd == End::Reset) {
        reset();
    }
}

QByteArray Peer::received() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_received;
}

void Peer::close()
{
    if (m_descriptor < 0) {
        return;
    }
    // Closing with unread bytes would send a reset.
    halfClose();
    const int flags = ::fcntl(m_descriptor, F_GETFL);
    ::fcntl(m_descriptor, F_SETFL, flags | O_NONBLOCK);
    while (takeArrived()) {
    }
    closeDescriptor();
}

void Peer::closeDescriptor()
{
    const std::lock_guard<std::mutex> lock(m_descriptorMutex);
    m_open = false;
    ::close(m_descriptor);
    m_descriptor = -1;
}

void Peer::reset()
{
    const linger atOnce{1, 0};
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    closeDescriptor();
}

void Peer::halfClose()
{
    const std::lock_guard<std::mutex> lock(m_descriptorMutex);
    ::shutdown(m_descriptor, SHUT_WR);
}

} // namespace support
