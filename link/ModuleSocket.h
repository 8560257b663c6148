// One connection to a module: making it, its address, sending on it.
#pragma once

#include "posix/StoppableCalls.h"

namespace vehicle {

/// Returns a new TCP socket, bound to any local address and connected to the module. Connecting is
/// retried on that socket, with no pause and no limit, until it succeeds or a stop of `calls` is
/// requested: a module that is down keeps one core busy. The descriptor is the caller's; it is
/// negative if the system gave none. `moduleName` begins the log lines.
int connectToModule(sys::StoppableCalls& calls, const char* moduleName, const char* ip, int port);

/// Writes the local address of a connected socket, dotted and with its terminating zero, into `ip`,
/// which holds at least 16 characters, and returns the text's length. If the system does not know
/// the address, prints "Get IP failed" to standard output; the address then reads 0.0.0.0.
int localAddress(int descriptor, char* ip);

/// Sends one frame of one payload byte. The result is not examined: the next receive notices a
/// connection that fails.
void sendFrame(int descriptor, char type, char data);

} // namespace vehicle
