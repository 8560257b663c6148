// The listening socket of a device.
#pragma once

#include "simulator/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace simulator {

/// How a device treats connection attempts.
enum class Reachability {
    Listening, ///< connections are accepted
    Unheard,   ///< handshakes complete, but connections are never accepted
    Refusing,  ///< connection refused
    Deaf       ///< no reply at all, like a device without power
};

/// The listening socket of one device.
class Listener
{
public:
    Listener(std::string address, std::uint16_t port);

    /// Changes how connection attempts are treated. Returns an error text, empty on success.
    std::string become(Reachability reachability);
    Reachability reachability() const { return m_reachability; }
    /// Returns the descriptor to poll for reading, or -1 while connections are not accepted.
    int descriptor() const;
    /// Returns the next pending connection, with Nagle's algorithm disabled, and sets `peer` to the
    /// peer's address, such as "192.168.1.148:40000". Returns no socket if none is pending.
    FileDescriptor accept(std::string& peer);

private:
    std::string listen(int backlog);
    std::string fillQueue();

    std::string m_address;
    std::uint16_t m_port;
    Reachability m_reachability = Reachability::Refusing;
    FileDescriptor m_socket;
    FileDescriptor m_filler; ///< our own connection that keeps a deaf device's queue full
};

} // namespace simulator
