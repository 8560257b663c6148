// Fuzzes reading a plain body.
//
// Input: a line with three decimal numbers (the announced length, the bytes received before, the
// size of the pieces), then the body.
#include "http/HTTPClient.h"
#include "tests/fuzz/MemoryPeer.h"

#include <algorithm>
#include <cstdlib>

namespace {

struct Plan
{
    std::uint32_t announced = 0;
    std::uint32_t receivedBefore = 0;
    std::size_t pieceSize = fuzz::longestInput;
    std::string body;
};

Plan planOf(const std::string& input)
{
    Plan plan;
    const std::size_t lineEnd = input.find('\n');
    if (lineEnd == std::string::npos) {
        plan.body = input;
        return plan;
    }
    const std::string line = input.substr(0, lineEnd);
    char* next = nullptr;
    plan.announced = static_cast<std::uint32_t>(std::strtoul(line.c_str(), &next, 10));
    plan.receivedBefore = static_cast<std::uint32_t>(std::strtoul(next, &next, 10));
    plan.pieceSize = 1 + std::strtoul(next, nullptr, 10) % fuzz::longestInput;
    plan.body = input.substr(lineEnd + 1);
    return plan;
}

void judge(const Plan& plan, fuzz::End end)
{
    // The body ends with the first piece that brings the count up to the length.
    std::size_t expected = 0;
    bool complete = false;
    while (!complete && expected < plan.body.size()) {
        expected = std::min(expected + plan.pieceSize, plan.body.size());
        complete = plan.receivedBefore + static_cast<std::uint32_t>(expected) >= plan.announced;
    }

    HTTPResponse response;
    response.contentLength = plan.announced;
    response.received = plan.receivedBefore;
    std::string body = "kept ";
    fuzz::TextPeer peer(plan.body, plan.pieceSize, end);
    HTTPSession session;
    const bool result = HTTPClient().readBody(session, response, body);

    fuzz::require(result == complete, "true exactly if the body is complete");
    fuzz::require(body == "kept " + plan.body.substr(0, expected),
                  "the body is appended, and nothing is lost or added");
    fuzz::require(peer.received() == expected, "nothing is received after the end");
    fuzz::require(response.received == plan.receivedBefore + static_cast<std::uint32_t>(expected),
                  "every byte is counted");
    fuzz::require(response.contentLength == plan.announced && response.chunkLeft == 0 &&
                      !response.chunked && !response.lastChunkSeen,
                  "nothing else of the record changes");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Plan plan = planOf(fuzz::textOf(data, size));
    judge(plan, fuzz::End::Closed);
    judge(plan, fuzz::End::Failed);
    plan.pieceSize = 1;
    judge(plan, fuzz::End::Closed);
    return 0;
}
