// One blocking IPv4 TCP socket for one HTTP exchange.
#pragma once

#include <string>

/// Owns its socket and closes it when destroyed. It sets no option and no time-out: every call
/// blocks for as long as the system lets it. One thread at a time.
class HTTPSession
{
public:
    HTTPSession() = default;
    ~HTTPSession();
    HTTPSession(const HTTPSession&) = delete;
    HTTPSession& operator=(const HTTPSession&) = delete;

    /// Connects to an address and port, both in network byte order, creating the socket if none is
    /// open. False when either fails; the socket then stays open until the session is closed.
    bool connect(unsigned int address, unsigned short port);

    /// Creates the socket unless one is open. False when that failed.
    bool initSocket();

    /// One `send` of at most `length` bytes; what the system call returned.
    int send(const char* data, int length);

    /// One `recv` of at most `length` bytes; what the system call returned (0: closed by the peer).
    int read(char* buffer, int length);

    /// Reads into `line` (emptied first) up to and with the next line feed, or `limit` bytes if
    /// `limit` is positive. Returns the number of bytes, which is short when the peer closed the
    /// connection; -1 when the first byte could not be received. Receives byte by byte, so that
    /// what follows the line stays in the socket.
    int readLine(std::string& line, int limit);

    /// Reads exactly `count` bytes into `data` (emptied first), in pieces of at most 1,024. Returns
    /// the number of bytes, which is short when the peer closed the connection or a receive failed.
    int readLimit(std::string& data, int count);

    /// Closes the socket if one is open.
    void closeSession();

    int socketDescriptor = -1; ///< -1 while no socket is open.
};
