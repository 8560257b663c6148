// Fuzzes reading a plain body.
//
// Input: a line with three decimal numbers (the announced length, the bytes received before, and
// one that sets the size of the pieces), then the body.
#include "http/HTTPClient.h"
#include "tests/fuzz/BodyPlan.h"

#include <algorithm>

namespace {

void judge(const fuzz::BodyPlan& plan, fuzz::End end)
{
    const auto length = static_cast<std::uint32_t>(plan.numbers[0]);
    const auto before = static_cast<std::uint32_t>(plan.numbers[1]);
    // The body ends with the first piece that brings the count up to the length.
    std::size_t expected = 0;
    bool complete = false;
    while (!complete && expected < plan.body.size()) {
        expected = std::min(expected + plan.pieceSize, plan.body.size());
        complete = before + static_cast<std::uint32_t>(expected) >= length;
    }

    HTTPResponse response;
    response.contentLength = length;
    response.received = before;
    std::string body = "kept ";
    fuzz::TextPeer peer(plan.body, plan.pieceSize, end);
    HTTPSession session;
    const bool result = HTTPClient().readBody(session, response, body);

    fuzz::require(result == complete, "true exactly if the body is complete");
    fuzz::require(body == "kept " + plan.body.substr(0, expected),
                  "the body is appended, and nothing is lost or added");
    fuzz::require(peer.received() == expected, "nothing is received after the end");
    fuzz::require(response.received == before + static_cast<std::uint32_t>(expected),
                  "every byte is counted");
    fuzz::require(response.contentLength == length && response.chunkLeft == 0 &&
                      !response.chunked && !response.lastChunkSeen,
                  "nothing else of the record changes");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::judgeReceptions(fuzz::textOf(data, size), 2, judge);
    return 0;
}
