// One blocking IPv4 TCP socket for one HTTP exchange.
#pragma once

#include <string>

/// A connection that owns its socket and closes it when destroyed. Sets no socket options and no
/// timeout: every call may block for as long as the system call does. Use from one thread at a
/// time.
class HTTPSession
{
public:
    HTTPSession() = default;
    ~HTTPSession();
    HTTPSession(const HTTPSession&) = delete;
    HTTPSession& operator=(const HTTPSession&) = delete;

    /// Connects to an address and port, both in network byte order. Creates the socket if none is
    /// open. Returns false if creating or connecting fails; a socket that fails to connect stays
    /// open.
    bool connect(unsigned int address, unsigned short port);

    /// Creates the socket unless one is open. Returns false if that fails.
    bool initSocket();

    /// Calls `send` once with `length` bytes and returns its result.
    int send(const char* data, int length);

    /// Calls `recv` once for at most `length` bytes and returns its result (0: closed by the peer).
    int read(char* buffer, int length);

    /// Reads into `line` (cleared first) up to and including the next line feed, but at most
    /// `limit` bytes if `limit` is positive. Returns the number of bytes read; the line feed is
    /// missing if the limit is reached or the connection ends or fails first. Returns -1 if
    /// receiving the first byte fails. Receives byte by byte, so that the bytes after the line stay
    /// in the socket.
    int readLine(std::string& line, int limit);

    /// Reads `count` bytes into `data` (cleared first), in pieces of at most 1,024. Returns the
    /// number of bytes read, which is smaller than `count` if the peer closes the connection or a
    /// receive fails.
    int readLimit(std::string& data, int count);

    /// Closes the socket if one is open.
    void closeSession();

    int socketDescriptor = -1; ///< -1 while no socket is open.
};
