// Fuzzes HTTPClient::readHeader().
//
// Input: the bytes from the camera. They are parsed twice: on a connection that then closes, and on
// one that then fails.
#include "http/HTTPClient.h"
#include "tests/fuzz/Decimal.h"
#include "tests/fuzz/MemoryPeer.h"

#include <tuple>

namespace {

auto fields(const HTTPResponse& response)
{
    return std::tie(response.statusCode, response.chunked, response.lastChunkSeen,
                    response.contentLength, response.received, response.chunkLeft,
                    response.headers);
}

/// Reads the head into the record and returns the number of bytes consumed.
std::size_t readHead(const std::string& text, fuzz::End end, HTTPResponse& response)
{
    fuzz::TextPeer peer(text, text.size(), end);
    HTTPSession session;
    fuzz::require(HTTPClient().readHeader(session, response), "reading a head never fails");
    return peer.received();
}

/// Returns the end of the head: after the first empty line, or the end of the text if there is
/// none.
std::size_t endOfHead(const std::string& text)
{
    if (text.compare(0, 2, "\r\n") == 0) {
        return 2;
    }
    const std::size_t emptyLine = text.find("\n\r\n");
    return emptyLine == std::string::npos ? text.size() : emptyLine + 3;
}

void requireHeadersStandIn(const std::string& head, const HTTPHeaders& headers)
{
    for (const auto& [name, value] : headers) {
        fuzz::require(name.find(": ") == std::string::npos, "a name ends at the first separator");
        fuzz::require(name.compare(0, 4, "HTTP") != 0, "a status line is no header");
        fuzz::require((name.empty() && value.empty()) ||
                          head.find(name + ": " + value) != std::string::npos,
                      "a header appears in the head as it was sent");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = fuzz::textOf(data, size);
    HTTPResponse response;
    const std::size_t taken = readHead(text, fuzz::End::Closed, response);
    fuzz::require(taken == endOfHead(text), "no byte after the empty line is consumed");

    const std::string head = text.substr(0, taken);
    requireHeadersStandIn(head, response.headers);
    fuzz::require(response.received == 0 && response.chunkLeft == 0 && !response.lastChunkSeen,
                  "a head does not change the body's fields");
    fuzz::require(response.statusCode == 0 || head.find("HTTP") != std::string::npos,
                  "a status comes from a status line");

    const auto length = response.headers.find("Content-Length");
    if (length == response.headers.end()) {
        fuzz::require(response.contentLength == 0, "without a length header the length is 0");
    } else if (const auto value = fuzz::shortDecimal(length->second)) {
        fuzz::require(response.contentLength == static_cast<std::uint32_t>(*value),
                      "the length is the number in its header");
    }
    const auto coding = response.headers.find("Transfer-Encoding");
    if (coding != response.headers.end() && coding->second == "chunked") {
        fuzz::require(response.chunked, "announced chunked coding is detected");
    }
    fuzz::require(!response.chunked || head.find("Transfer-Encoding: chunked") != std::string::npos,
                  "chunked coding is detected only if announced");

    HTTPResponse again = response;
    fuzz::require(readHead(text, fuzz::End::Failed, again) == taken &&
                      fields(again) == fields(response),
                  "reading the same head again changes nothing, however the connection ends");
    return 0;
}
