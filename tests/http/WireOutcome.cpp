#include "tests/http/WireOutcome.h"

#include "http/HTTPClient.h"
#include "tests/support/Cuts.h"

#include <array>

#include <sys/socket.h>
#include <unistd.h>

using support::printable;

namespace {

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

Outcome readFrom(Reader reader, const HTTPResponse& before, const support::Delivery& delivery)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return {"no socket pair", ""};
    }
    HTTPSession session;
    session.socketDescriptor = ends[0];
    support::PieceSender sender(ends[1], ends[0], delivery);

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
