#include "tests/http/WireOutcome.h"

#include "http/HTTPClient.h"
#include "tests/http/PairedSession.h"
#include "tests/kit/Cuts.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>

#include <sys/socket.h>
#include <unistd.h>

using support::inQuotes;
using support::shortened;

namespace {

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

/// Makes the call on the session and describes its result.
std::string made(const std::string& operation, HTTPSession& session, Record& record)
{
    std::istringstream words(operation);
    std::string name;
    int count = 0;
    words >> name >> count;
    if (name == "readLine" || name == "readLimit") {
        std::string text = "old";
        const int result =
            name == "readLine" ? session.readLine(text, count) : session.readLimit(text, count);
        return std::to_string(result) + (text.empty() ? "" : " " + inQuotes(text));
    }
    HTTPClient client;
    bool result = true;
    if (name == "readHeader") {
        result = client.readHeader(session, record.response);
    } else if (name == "readBody") {
        result = client.readBody(session, record.response, record.body);
    } else if (name == "get") {
        client.readHeader(session, record.response);
        result = client.readBody(session, record.response, record.body);
    } else if (name == "post") {
        client.stopPost(session, record.response, record.body);
    } else {
        return "unknown call";
    }
    return describe(result, record);
}

} // namespace

std::string describe(bool result, const Record& record)
{
    const HTTPResponse& response = record.response;
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
            text += comma + shortened(name) + ": " + shortened(value);
            comma = ", ";
        }
        text += "}";
    }
    return record.body.empty() ? text : text + " " + inQuotes(record.body);
}

std::string prepared(const std::string& call, Record& record)
{
    const std::size_t end = call.find(" given ");
    if (end == std::string::npos) {
        return call;
    }
    const std::string given = call.substr(end + 6) + " ";
    const auto number = [&given](const std::string& name) {
        const std::size_t at = given.find(" " + name + "=");
        return at == std::string::npos ? 0 : std::atoll(&given[at + name.size() + 2]);
    };
    const std::size_t quote = std::min(given.find('"'), given.size() - 1);
    record = {};
    record.response.statusCode = static_cast<int>(number("status"));
    record.response.chunked = given.find(" chunked ") != std::string::npos;
    record.response.lastChunkSeen = given.find(" last ") != std::string::npos;
    record.response.contentLength = static_cast<std::uint32_t>(number("length"));
    record.response.received = static_cast<std::uint32_t>(number("received"));
    record.response.chunkLeft = static_cast<int>(number("left"));
    record.body = given.substr(quote + 1, given.rfind('"') - quote - 1);
    const bool understood = describe(false, record) + " " == "false" + given;
    return understood ? call.substr(0, end) : "unknown word in: " + call;
}

Outcome readFrom(const std::string& call, Record& record, const support::Delivery& delivery)
{
    const std::string operation = prepared(call, record);
    PairedSession pair;
    // A second descriptor of the same socket, for receivedByNow(): stopPost closes the session's.
    const int kept = ::dup(pair.session.socketDescriptor);
    support::PieceSender sender(pair.test, pair.session.socketDescriptor, delivery);

    const std::string text = made(operation, pair.session, record);

    const std::string unsent = sender.finish();
    const std::string stopped = sender.readerHadToBeStopped() ? "NEVER RETURNED, then " : "";
    const std::string unread = receivedByNow(kept) + unsent;
    ::close(kept);
    return {stopped + text, unread.empty() ? "" : inQuotes(unread)};
}

std::string readFromFailing(const std::string& call, Record& record, const std::string& bytes)
{
    const std::string operation = prepared(call, record);
    PairedSession pair;
    const bool sent = pair.send(QByteArray::fromStdString(bytes));
    pair.failInsteadOfWaiting();
    return (sent ? "" : "NOT SENT, then ") + made(operation, pair.session, record);
}
