// One connection to a module: connecting, its local address, sending.
#pragma once

#include "posix/StoppableCalls.h"

namespace vehicle {

/// Returns a new TCP socket, bound to any local address and connected to the module. Connecting is
/// retried on that socket, without a pause or limit, until it succeeds or a stop of `calls` is
/// requested: a module that is down keeps one core busy. The caller owns the descriptor; it is
/// negative if the system has none left. `moduleName` begins the log lines.
int connectToModule(sys::StoppableCalls& calls, const char* moduleName, const char* ip, int port);

/// Writes the local address of a connected socket, dotted and zero-terminated, into `ip`, which has
/// room for at least 16 characters, and returns the length of the text. If the system does not know
/// the address, prints "Get IP failed" to standard output; the address is then 0.0.0.0.
int localAddress(int descriptor, char* ip);

/// Sends one frame with one payload byte. The result is ignored: the next receive detects a failed
/// connection.
void sendFrame(int descriptor, char type, char data);

} // namespace vehicle
