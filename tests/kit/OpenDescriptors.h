// Counts open descriptors.
#pragma once

#include <functional>
#include <string>

#include <QByteArray>
#include <QtGlobal>

namespace support {

/// Returns how many descriptors of a process refer to something whose name matches, such as
/// "socket:[1]" or the path of a file.
int countDescriptors(const std::function<bool(const std::string& name)>& matches,
                     const std::string& process = "self");

/// Returns the number of sockets of this process that are connected to the address and port,
/// whether or not the peer has closed. A server's own sockets on that port do not count.
int socketsConnectedTo(const QByteArray& address, quint16 port);

/// Returns the number of descriptors of this process that refer to the file.
int descriptorsOn(const QByteArray& path);

/// Returns the number of sockets of this process.
int openSockets();

/// Returns the number of descriptors of this process, not counting event descriptors: our code
/// creates none of these, while Qt creates one per thread, and the threads of Qt's pools outlive a
/// window.
int openDescriptors();

} // namespace support
