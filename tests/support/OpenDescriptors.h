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

/// All descriptors of this process but those for events: none of our code makes one, while Qt makes
/// one for each thread, and the threads of its own pools outlive a window.
int openDescriptors();

} // namespace support
