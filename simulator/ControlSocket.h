// The Unix socket of --control.
#pragma once

#include "simulator/FileDescriptor.h"
#include "simulator/LineReader.h"

#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include <poll.h>
#include <sys/types.h>
#include <sys/un.h>

namespace simulator {

/// The maximum length of a socket's path in bytes.
constexpr std::size_t longestSocketPath = sizeof(sockaddr_un::sun_path) - 1;

/// A socket that accepts control lines from any number of clients of the user who runs the
/// simulator; other users cannot connect. Never blocks; a client that does not read its answers is
/// disconnected.
class ControlSocket
{
public:
    ControlSocket() = default;
    ~ControlSocket();
    ControlSocket(const ControlSocket&) = delete;
    ControlSocket& operator=(const ControlSocket&) = delete;

    /// Listens at the path. A stale socket is replaced; one in use, or any other file, is an error.
    /// Returns an error text, empty on success.
    std::string open(const std::string& path);
    /// Adds the descriptors for poll.
    void addTo(std::vector<pollfd>& descriptors) const;
    /// Accepts new clients, reads what has arrived and calls `answer` for each line. Keeps the
    /// answers until flush().
    void read(const std::function<std::vector<std::string>(const std::string&)>& answer);
    /// Sends the answers, as far as the clients accept them.
    void flush();

private:
    struct Client
    {
        FileDescriptor socket;
        LineReader lines{};
        std::string unsent{};
        bool ended = false; ///< the client sends no more
    };
    void acceptAll();

    FileDescriptor m_socket;
    std::string m_path;
    dev_t m_device = 0; ///< with m_inode: identifies our file, the only one that may be removed
    ino_t m_inode = 0;
    std::list<Client> m_clients;
};

/// Sends control lines to the simulator that listens at the path and prints its answers. Returns an
/// error text if the simulator cannot be reached or stops answering; otherwise sets `allFine` to
/// whether every line was answered with "ok".
std::string sendControlLines(const std::string& path, const std::vector<std::string>& lines,
                             bool& allFine);

} // namespace simulator
