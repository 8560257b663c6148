// The answer: status line, header lines, body.
#include "http/HTTPClient.h"

#include "posix/LeadingNumber.h"

#include <array>
#include <cstdio>
#include <new>
#include <string_view>

namespace {

constexpr int headerLineLimit = 102400;
constexpr int chunkSizeLineLimit = 1024;
constexpr int plainReceiveLimit = 10240;
constexpr std::string_view statusWord = "HTTP";
constexpr std::string_view lineEnd = "\r\n";

bool beginsWithStatusWord(std::string_view text)
{
    return text.substr(0, statusWord.size()) == statusWord;
}

/// Reads the lines of the head up to the empty line or the end of the connection.
void readHeaderLines(HTTPClient& client, HTTPSession& session, HTTPResponse& response)
{
    std::string line;
    while (session.readLine(line, headerLineLimit) > 0 && line != lineEnd) {
        std::string name;
        std::string value;
        client.parseLine(line, name, value);
        if (beginsWithStatusWord(name)) {
            const std::size_t space = value.find(' ');
            if (space != std::string::npos) {
                response.statusCode = sys::leadingNumber(value.substr(0, space).c_str());
            }
            continue;
        }
        response.headers[name] = value;
        if (name == "Transfer-Encoding" && value == "chunked") {
            response.chunked = true;
        } else if (name == "Content-Length") {
            response.contentLength = static_cast<std::uint32_t>(sys::leadingNumber(value.c_str()));
        }
    }
}

/// Reads until the received count reaches the announced length, but at least once; without a length
/// only once. The count in `response` is never reset, so after an earlier exchange it may have
/// reached the length already.
bool readPlainBody(HTTPSession& session, HTTPResponse& response, std::string& body)
{
    std::array<char, plainReceiveLimit> buffer;
    do {
        const int count = session.read(buffer.data(), plainReceiveLimit);
        if (count < 1) {
            return false;
        }
        response.received += static_cast<std::uint32_t>(count);
        body.append(buffer.data(), static_cast<std::size_t>(count));
    } while (response.received < response.contentLength);
    return true;
}

/// Returns the size in a chunk's first line: the hexadecimal number at its start, 0 if there is
/// none, and a negative value if bit 31 is set.
int chunkSize(const std::string& line)
{
    unsigned int size = 0;
    std::sscanf(line.c_str(), "%x", &size);
    return static_cast<int>(size);
}

/// Reads a chunked body. Each iteration reads one line (a size, the line ending after a chunk's
/// data, or the line after the last chunk) or the rest of a chunk. Only one line is read after the
/// last chunk, whether it is empty or a trailer.
bool readChunkedBody(HTTPSession& session, HTTPResponse& response, std::string& body)
{
    std::string text;
    for (;;) {
        if (response.chunkLeft > 0) {
            const int count = session.readLimit(text, response.chunkLeft);
            if (count < 1) {
                return false;
            }
            response.received += static_cast<std::uint32_t>(count);
            response.chunkLeft -= count;
            body += text;
            continue;
        }
        if (session.readLine(text, chunkSizeLineLimit) < 1) {
            return false;
        }
        if (response.lastChunkSeen) {
            return true;
        }
        if (text == lineEnd) {
            continue;
        }
        const int size = chunkSize(text);
        if (size >= 0) {
            response.chunkLeft = size;
            response.lastChunkSeen = size == 0;
        }
    }
}

} // namespace

bool HTTPClient::readHeader(HTTPSession& session, HTTPResponse& response)
{
    try {
        readHeaderLines(*this, session, response);
    } catch (const std::bad_alloc&) {
        // A device may send an endless head. Reading ends when memory runs out; what was read
        // counts.
    }
    return true;
}

void HTTPClient::parseLine(const std::string& line, std::string& name, std::string& value)
{
    std::string_view text = line;
    const std::size_t first = text.find_first_not_of(lineEnd);
    if (first != std::string_view::npos) {
        const std::size_t last = text.find_last_not_of(lineEnd);
        text = text.substr(first, last - first + 1);
    }
    const std::string_view separator = beginsWithStatusWord(text) ? " " : ": ";
    const std::size_t split = text.find(separator);
    if (split != std::string_view::npos) {
        // Copied before anything is appended: `line` may be the same object as `name` or `value`.
        const std::string left(text.substr(0, split));
        const std::string right(text.substr(split + separator.size()));
        name += left;
        value += right;
    }
}

bool HTTPClient::readBody(HTTPSession& session, HTTPResponse& response, std::string& body)
{
    try {
        return response.chunked ? readChunkedBody(session, response, body)
                                : readPlainBody(session, response, body);
    } catch (const std::bad_alloc&) {
        return false; // a device may announce, or just send, more than fits into memory
    }
}
