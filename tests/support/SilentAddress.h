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
    SilentAddress(const QByteArray& address, quint16 port);
    ~SilentAddress();
    SilentAddress(const SilentAddress&) = delete;
    SilentAddress& operator=(const SilentAddress&) = delete;

private:
    int m_listener;
    std::vector<int> m_waiting;
};

} // namespace support
