// The listening socket of a device.
#pragma once

#include "simulator/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace simulator {

/// How a device meets those who want to connect.
enum class Reachability {
    Listening, ///< connections are taken
    Unheard,   ///< handshakes complete, nobody takes the connection
    Refusing,  ///< connection refused
    Deaf       ///< no reply at all, as from a device without power
};

/// The listening socket of one device.
class Listener
{
public:
    Listener(std::string address, std::uint16_t port);

    /// Changes how the device is met. Returns an error text, empty on success.
    std::string become(Reachability reachability);
    Reachability reachability() const { return m_reachability; }
    /// The descriptor to poll for reading, or -1 while no connection shall be taken.
    int descriptor() const;
    /// The next waiting connection with Nagle's delay off, or nothing. Fills in the peer's
    /// address as "192.168.1.148:40000".
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
