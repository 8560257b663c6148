// Two connected sockets.
#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>
#include <QtGlobal>

namespace support {

/// The two ends of a local connection: the product uses one, the test the other. Both are closed
/// with this object if they are still open. Closing an end with unread bytes resets the other end.
class SocketPair
{
public:
    SocketPair() : SocketPair(SOCK_STREAM) {}
    explicit SocketPair(int type)
    {
        int ends[2] = {-1, -1};
        if (::socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends) != 0) {
            qFatal("no socket pair");
        }
        product = ends[0];
        test = ends[1];
    }
    ~SocketPair()
    {
        closeProduct();
        closeTest();
    }
    SocketPair(const SocketPair&) = delete;
    SocketPair& operator=(const SocketPair&) = delete;

    void closeProduct() { closeEnd(product); }
    void closeTest() { closeEnd(test); }

    /// Sends from the test's end. Returns false unless everything was sent.
    bool send(const QByteArray& bytes) const
    {
        return ::send(test, bytes.constData(), static_cast<std::size_t>(bytes.size()),
                      MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }

    /// Returns what has arrived at the test's end, without waiting.
    QByteArray arrived() const
    {
        QByteArray all;
        char buffer[4096];
        ssize_t count = 0;
        while ((count = ::recv(test, buffer, sizeof buffer, MSG_DONTWAIT)) > 0) {
            all.append(buffer, static_cast<int>(count));
        }
        return all;
    }

    int product = -1;
    int test = -1;

private:
    static void closeEnd(int& end)
    {
        if (end >= 0) {
            ::close(end);
            end = -1;
        }
    }
};

} // namespace support
