// A device that is there but does not answer.
#pragma once

#include <vector>

#include <QByteArray>
#include <QtGlobal>

namespace support {

/// An address and port where a connect neither succeeds nor fails: the queue of the socket that
/// listens there is full and nobody accepts. Lasts until this object ends.
class SilentAddress
{
public:
    /// Port 0 stands for any free one.
    SilentAddress(const QByteArray& address, quint16 port);
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
