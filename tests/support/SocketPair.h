// Two connected sockets.
#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>
#include <QtGlobal>

namespace support {

/// Two ends of one local stream: the product gets one, the test plays the other. Each is closed
/// with this object unless it was before. An end that is closed while bytes for it are unread
/// gives the other one a reset.
class SocketPair
{
public:
    SocketPair()
    {
        int ends[2] = {-1, -1};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
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

    /// Sends from the test's end; false unless all went.
    bool send(const QByteArray& bytes) const
    {
        return ::send(test, bytes.constData(), static_cast<std::size_t>(bytes.size()),
                      MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }

    /// What has arrived at the test's end, without waiting.
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
