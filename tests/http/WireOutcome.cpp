#include "tests/http/WireOutcome.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "http/HTTPClient.h"

namespace {

constexpr std::chrono::seconds patience{5};

std::string printable(const std::string& bytes)
{
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '\r') {
            text += "\\r";
        } else if (byte == '\n') {
            text += "\\n";
        } else if (value < 0x20 || value > 0x7E) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", value);
            text += escape;
        } else {
            text += byte;
        }
    }
    return text;
}

std::string describe(bool result, const HTTPResponse& response, const std::string& body)
{
    std::string text = result ? "true" : "false";
    const auto number = [&text](const char* name, long long value) {
        if (value != 0) {
            text += std::string(" ") + name + "=" + std::to_string(value);
        }
    };
    number("status", response.statusCode);
    text += response.chunked ? " chunked" : "";
    text += response.lastChunkSeen ? " last" : "";
    number("length", response.contentLength);
    number("received", response.received);
    number("left", response.chunkLeft);
    if (!response.headers.empty()) {
        text += " {";
        const char* comma = "";
        for (const auto& [name, value] : response.headers) {
            text += comma + printable(name) + ": " + printable(value);
            comma = ", ";
        }
        text += "}";
    }
    if (!body.empty()) {
        text += " \"" + printable(body) + "\"";
    }
    return text;
}

/// The other end of the connection. Sends a piece only once the reader has taken the one before out
/// of the socket: then no receive can see across the cut, and none waits longer than it must.
class Sender
{
public:
    Sender(int descriptor, int readersDescriptor, const Delivery& delivery)
        : m_descriptor(descriptor), m_readersDescriptor(readersDescriptor), m_delivery(delivery),
          m_thread([this] { run(); })
    {
    }

    /// To be called when the reader has returned. What the sender had not sent yet.
    std::string finish()
    {
        m_readerReturned = true;
        m_thread.join();
        return m_unsent;
    }

    bool readerHadToBeStopped() const { return m_readerHadToBeStopped; }

private:
    void run()
    {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        const auto waitUntil = [this, deadline](auto&& condition) {
            while (!m_readerReturned && std::chrono::steady_clock::now() < deadline) {
                if (condition()) {
                    return true;
                }
                std::this_thread::yield();
            }
            return false;
        };

        std::size_t next = 0;
        const std::vector<std::string>& pieces = m_delivery.pieces;
        while (next < pieces.size() && waitUntil([this] { return everythingIsReceived(); })) {
            const std::string& piece = pieces[next++];
            if (::send(m_descriptor, piece.data(), piece.size(), MSG_NOSIGNAL)
                != static_cast<ssize_t>(piece.size())) {
                break;
            }
        }
        for (; next < pieces.size(); ++next) {
            m_unsent += pieces[next];
        }
        if (m_delivery.closeAtTheEnd) {
            ::shutdown(m_descriptor, SHUT_RDWR);
        }
        const auto slowly = [] {
            std::this_thread::sleep_for(std::chrono::microseconds(50));
            return false;
        };
        waitUntil(slowly);
        if (!m_readerReturned) {
            stopReader();
        }
    }

    bool everythingIsReceived() const
    {
        int waiting = 0;
        return ::ioctl(m_readersDescriptor, FIONREAD, &waiting) == 0 && waiting == 0;
    }

    /// Puts something into the reader's descriptor that nothing can be received from, so that a
    /// reader which tries for ever sees an error, and wakes one that waits.
    void stopReader()
    {
        m_readerHadToBeStopped = true;
        const int other = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::dup2(other, m_readersDescriptor);
        ::close(other);
        ::shutdown(m_descriptor, SHUT_RDWR);
    }

    const int m_descriptor;
    const int m_readersDescriptor;
    const Delivery& m_delivery;
    std::string m_unsent;
    std::atomic<bool> m_readerReturned = false;
    std::atomic<bool> m_readerHadToBeStopped = false;
    std::thread m_thread;
};

std::string receivedByNow(int descriptor)
{
    std::string bytes;
    std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t count = ::recv(descriptor, buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count < 1) {
            return bytes;
        }
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

} // namespace

std::vector<std::string> cut(const std::string& bytes, const std::vector<std::size_t>& positions)
{
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (const std::size_t end : positions) {
        pieces.push_back(bytes.substr(begin, end - begin));
        begin = end;
    }
    pieces.push_back(bytes.substr(begin));
    return pieces;
}

std::vector<std::string> singleBytes(const std::string& bytes)
{
    std::vector<std::string> pieces;
    for (const char byte : bytes) {
        pieces.emplace_back(1, byte);
    }
    return pieces;
}

Outcome readFrom(Reader reader, const HTTPResponse& before, const Delivery& delivery)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return {"no socket pair", ""};
    }
    HTTPSession session;
    session.socketDescriptor = ends[0];
    Sender sender(ends[1], ends[0], delivery);

    HTTPClient client;
    HTTPResponse response = before;
    std::string body;
    bool result = true;
    if (reader != Reader::Body) {
        result = client.readHeader(session, response);
    }
    if (reader != Reader::Head) {
        result = client.readBody(session, response, body);
    }

    const std::string unsent = sender.finish();
    const std::string stopped = sender.readerHadToBeStopped() ? "NEVER RETURNED, then " : "";
    const std::string unread = receivedByNow(session.socketDescriptor) + unsent;
    ::close(ends[1]);
    return {stopped + describe(result, response, body), printable(unread)};
}
