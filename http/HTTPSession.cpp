#include "http/HTTPSession.h"

#include "posix/PipeSignalBlock.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

HTTPSession::~HTTPSession()
{
    closeSession();
}

bool HTTPSession::connect(unsigned int address, unsigned short port)
{
    if (!initSocket()) {
        return false;
    }
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_addr.s_addr = address;
    peer.sin_port = port;
    return ::connect(socketDescriptor, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) != -1;
}

bool HTTPSession::initSocket()
{
    if (socketDescriptor == -1) {
        socketDescriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    }
    return socketDescriptor != -1;
}

int HTTPSession::send(const char* data, int length)
{
    const sys::PipeSignalBlock block;
    return static_cast<int>(::send(socketDescriptor, data, static_cast<std::size_t>(length), 0));
}

int HTTPSession::read(char* buffer, int length)
{
    return static_cast<int>(::recv(socketDescriptor, buffer, static_cast<std::size_t>(length), 0));
}

int HTTPSession::readLine(std::string& line, int limit)
{
    line.clear();
    int count = 0;
    while (limit <= 0 || count < limit) {
        char byte = 0;
        const int got = read(&byte, 1);
        if (got != 1) {
            return got == 0 || count > 0 ? count : -1;
        }
        line.push_back(byte);
        ++count;
        if (byte == '\n') {
            break;
        }
    }
    return count;
}

int HTTPSession::readLimit(std::string& data, int count)
{
    data.clear();
    std::array<char, 1024> buffer;
    int wanted = count;
    while (wanted > 0) {
        const int got = read(buffer.data(), std::min(wanted, static_cast<int>(buffer.size())));
        if (got < 1) {
            break;
        }
        data.append(buffer.data(), static_cast<std::size_t>(got));
        wanted -= got;
    }
    return count > 0 ? count - wanted : 0;
}

void HTTPSession::closeSession()
{
    if (socketDescriptor != -1) {
        ::close(socketDescriptor);
        socketDescriptor = -1;
    }
}
