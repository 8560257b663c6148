// Fuzzes reading a chunked body.
//
// Input: the bytes after the head. They are delivered three times: whole and byte by byte on a
// connection that then closes, and in pieces of seven bytes on one that then fails. The result must
// be the same each time.
#include "http/HTTPClient.h"
#include "tests/fuzz/MemoryPeer.h"

#include <algorithm>
#include <cstdlib>

namespace {

struct Outcome
{
    bool result = false;
    bool lastChunkSeen = false;
    int chunkLeft = 0;
    std::string body;
    std::size_t taken = 0;

    bool operator==(const Outcome& other) const
    {
        return result == other.result && lastChunkSeen == other.lastChunkSeen &&
               chunkLeft == other.chunkLeft && body == other.body && taken == other.taken;
    }
};

/// Returns the expected outcome, by parsing the complete text independently of the product.
Outcome expectedOutcome(const std::string& text)
{
    Outcome outcome;
    while (outcome.taken < text.size()) {
        if (outcome.chunkLeft > 0) {
            const std::string data =
                text.substr(outcome.taken, static_cast<std::size_t>(outcome.chunkLeft));
            outcome.body += data;
            outcome.taken += data.size();
            outcome.chunkLeft -= static_cast<int>(data.size());
            continue;
        }
        const std::size_t lineEnd = std::min(text.find('\n', outcome.taken), text.size() - 1);
        const std::string line = text.substr(outcome.taken, lineEnd + 1 - outcome.taken);
        outcome.taken += line.size();
        if (outcome.lastChunkSeen) {
            outcome.result = true;
            return outcome;
        }
        const auto size = static_cast<int>(std::strtoul(line.c_str(), nullptr, 16));
        if (line != "\r\n" && size >= 0) {
            outcome.chunkLeft = size;
            outcome.lastChunkSeen = size == 0;
        }
    }
    return outcome;
}

Outcome outcomeOf(const std::string& text, std::size_t pieceSize, fuzz::End end)
{
    HTTPResponse response;
    response.chunked = true;
    Outcome outcome;
    fuzz::TextPeer peer(text, pieceSize, end);
    HTTPSession session;
    outcome.result = HTTPClient().readBody(session, response, outcome.body);
    outcome.lastChunkSeen = response.lastChunkSeen;
    outcome.chunkLeft = response.chunkLeft;
    outcome.taken = peer.received();
    fuzz::require(response.received == outcome.body.size(), "every byte is counted");
    fuzz::require(response.chunked && response.contentLength == 0 && response.statusCode == 0 &&
                      response.headers.empty(),
                  "nothing else of the record changes");
    return outcome;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = fuzz::textOf(data, size);
    const Outcome expected = expectedOutcome(text);
    fuzz::require(outcomeOf(text, fuzz::longestInput, fuzz::End::Closed) == expected,
                  "delivered whole");
    fuzz::require(outcomeOf(text, 1, fuzz::End::Closed) == expected, "delivered byte by byte");
    fuzz::require(outcomeOf(text, 7, fuzz::End::Failed) == expected,
                  "delivered in pieces, then failed");
    return 0;
}
