// Counts the open descriptors of this process.
#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace support {

/// Sockets of this process connected to the address and port, whether or not the peer has closed.
/// Excludes sockets of a server on that port.
int socketsConnectedTo(const QByteArray& address, quint16 port);

/// Descriptors of this process that refer to the file.
int descriptorsOn(const QByteArray& path);

/// All sockets of this process.
int openSockets();

/// All descriptors of this process except event descriptors: our code creates none, while Qt
/// creates one per thread, and the threads of its own pools outlive a window.
int openDescriptors();

} // namespace support
