// A device that does not answer.
#pragma once

#include <vector>

#include <QByteArray>
#include <QtGlobal>

namespace support {

/// An address and port where connecting neither succeeds nor fails while this object exists: the
/// queue of the listening socket is full and no connection is accepted. With `answersOnce` the
/// queue still has room for one connection, such as the window's probe.
class SilentAddress
{
public:
    /// Port 0 means any free port.
    SilentAddress(const QByteArray& address, quint16 port, bool answersOnce = false);
    ~SilentAddress();
    SilentAddress(const SilentAddress&) = delete;
    SilentAddress& operator=(const SilentAddress&) = delete;

    quint16 port() const;

private:
    int m_listener;
    quint16 m_port = 0;
    std::vector<int> m_waiting;
};

} // namespace support
