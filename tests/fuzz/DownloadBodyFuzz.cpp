// Fuzzes copying a recording from the connection to the file.
//
// Input: a line with two decimal numbers (the announced length and the size of the pieces), then
// the recording.
#include "download/RecordingDownload.h"
#include "tests/fuzz/MemoryPeer.h"

#include <algorithm>
#include <cstdlib>

namespace {

struct Plan
{
    qint64 announced = 0;
    std::size_t pieceSize = fuzz::longestInput;
    std::string recording;
};

Plan planOf(const std::string& input)
{
    Plan plan;
    const std::size_t lineEnd = input.find('\n');
    if (lineEnd == std::string::npos) {
        plan.recording = input;
        return plan;
    }
    const std::string line = input.substr(0, lineEnd);
    char* next = nullptr;
    plan.announced = std::strtoll(line.c_str(), &next, 10);
    plan.pieceSize = 1 + std::strtoul(next, nullptr, 10) % fuzz::longestInput;
    plan.recording = input.substr(lineEnd + 1);
    return plan;
}

void judge(const Plan& plan, fuzz::End end)
{
    // The length is checked only after each receive, so whole pieces are written until it is
    // reached.
    std::size_t expected = 0;
    std::size_t pieces = 0;
    while (expected < plan.recording.size() && static_cast<qint64>(expected) < plan.announced) {
        expected = std::min(expected + plan.pieceSize, plan.recording.size());
        ++pieces;
    }

    sys::StoppableCalls stoppable;
    download::RecordingDownload download(stoppable);
    fuzz::TextPeer peer(plan.recording, plan.pieceSize, end);
    std::size_t calls = 0;
    qint64 shown = 0;
    download.copyBody(plan.announced, [&](qint64 received, qint64 announced) {
        ++calls;
        shown = received;
        fuzz::require(announced == plan.announced, "progress reports the announced length");
        fuzz::require(received > 0 || end == fuzz::End::Failed, "progress grows");
    });

    fuzz::require(peer.written() == plan.recording.substr(0, expected),
                  "the file holds the recording up to its length, in whole pieces");
    fuzz::require(peer.received() <= std::min(expected + plan.pieceSize, plan.recording.size()),
                  "at most one more piece is received");
    if (end == fuzz::End::Closed) {
        fuzz::require(calls == pieces && shown == static_cast<qint64>(expected),
                      "progress is reported once for every piece");
    } else {
        fuzz::require(calls <= pieces + 16, "sixteen errors in a row end a recording");
    }
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
