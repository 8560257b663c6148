// One connection to a module: connecting, its local address, sending.
#pragma once

#include "posix/StoppableCalls.h"

namespace vehicle {

/// Returns a new TCP socket, bound to any local address and connected to the module. Connecting is
/// retried on that socket, without a pause or limit, until it succeeds or a stop of `calls` is
/// requested: a module that refuses connections keeps one core busy. The caller owns the
/// descriptor. After a stop the socket may not be connected, and the descriptor is negative if no
/// socket could be created. Log lines begin with `moduleName`.
int connectToModule(sys::StoppableCalls& calls, const char* moduleName, const char* ip, int port);

/// Writes the local address of a connected socket, dotted and zero-terminated, into `ip`, which has
/// room for at least 16 characters, and returns the length of the text. If the address cannot be
/// determined, prints "Get IP failed" to standard output and writes 0.0.0.0.
int localAddress(int descriptor, char* ip);

/// Sends one frame with one payload byte. Ignores the result of send(): the next recv() detects a
/// failed connection.
void sendFrame(int descriptor, char type, char data);

} // namespace vehicle
