// What this process holds open.
#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace support {

/// Sockets of this process that are connected to the address and port, whether the other side has
/// closed or not. Sockets of a server on that port are not among them.
int socketsConnectedTo(const QByteArray& address, quint16 port);

/// Descriptors of this process on the file.
int descriptorsOn(const QByteArray& path);

/// All sockets of this process.
int openSockets();

} // namespace support
