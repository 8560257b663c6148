// Fuzzes copying a recording from the connection to the file.
//
// Input: a line with two decimal numbers (the announced length, and one that sets the size of the
// pieces), then the recording.
#include "download/RecordingDownload.h"
#include "tests/fuzz/BodyPlan.h"

#include <algorithm>

namespace {

void judge(const fuzz::BodyPlan& plan, fuzz::End end)
{
    const qint64 length = plan.numbers[0];
    // The product checks only between receives whether the length is reached, so it writes whole
    // pieces.
    std::size_t expected = 0;
    std::size_t pieces = 0;
    while (expected < plan.body.size() && static_cast<qint64>(expected) < length) {
        expected = std::min(expected + plan.pieceSize, plan.body.size());
        ++pieces;
    }

    sys::StoppableCalls stoppable;
    download::RecordingDownload download(stoppable);
    fuzz::TextPeer peer(plan.body, plan.pieceSize, end);
    std::size_t calls = 0;
    qint64 shown = 0;
    download.copyBody(length, [&](qint64 received, qint64 announced) {
        ++calls;
        shown = received;
        fuzz::require(announced == length, "progress reports the announced length");
        fuzz::require(received > 0 || end == fuzz::End::Failed, "progress grows");
    });

    fuzz::require(peer.written() == plan.body.substr(0, expected),
                  "the file holds the recording up to its length, in whole pieces");
    fuzz::require(peer.received() <= std::min(expected + plan.pieceSize, plan.body.size()),
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
    fuzz::judgeReceptions(fuzz::textOf(data, size), 1, judge);
    return 0;
}
