// Fuzzes belun-verify's parser of HTTP answers.
//
// Input: a byte that sets the size of the pieces, then what the camera sends before it closes the
// connection.
#include "tests/fuzz/Require.h"
#include "verify/AnswerReader.h"

#include <algorithm>

namespace {

using verify::AnswerReader;
using State = AnswerReader::State;

constexpr std::uint64_t bodyLimit = 64;

struct Outcome
{
    State state = State::Head;
    int status = 0;
    bool more = false;
    std::string body;
    std::optional<std::uint64_t> announced;

    bool operator==(const Outcome& other) const
    {
        return state == other.state && status == other.status && body == other.body &&
               announced == other.announced;
    }
};

Outcome outcomeOf(std::string_view answer, std::size_t piece)
{
    Outcome outcome;
    bool headSeen = false;
    AnswerReader reader(bodyLimit, {[&](std::optional<std::uint64_t> announced) {
                                        fuzz::require(!headSeen, "one head is reported");
                                        headSeen = true;
                                        outcome.announced = announced;
                                        return true;
                                    },
                                    [&](std::string_view bytes) {
                                        fuzz::require(headSeen, "the head comes first");
                                        outcome.body.append(bytes);
                                        return true;
                                    }});
    for (std::size_t i = 0; i < answer.size(); i += piece) {
        reader.receive(answer.substr(i, piece));
    }
    reader.closed();
    fuzz::require(reader.ended(), "a closed connection ends the answer");
    fuzz::require(outcome.body.size() <= bodyLimit, "no more of the body than allowed");
    outcome.state = reader.state();
    outcome.status = reader.status();
    outcome.more = reader.hasMore();
    return outcome;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input = fuzz::textOf(data, size);
    const std::size_t piece = input.empty() ? 1 : static_cast<unsigned char>(input[0]) % 16 + 1;
    const std::string answer = input.substr(std::min<std::size_t>(1, input.size()));
    const Outcome whole = outcomeOf(answer, answer.size() + 1);
    const Outcome cut = outcomeOf(answer, piece);
    fuzz::require(whole.state == State::BodyTooLong || whole == cut,
                  "splitting an answer changes nothing");
    fuzz::require(cut.state == whole.state, "splitting an answer does not change its state");

    const bool complete = whole.state == State::Complete;
    fuzz::require(!complete || whole.status == 200, "only a success is complete");
    fuzz::require(!complete || !whole.announced || whole.body.size() == *whole.announced,
                  "a complete body has its announced length");
    fuzz::require(!whole.more || complete, "only a complete answer can be followed by bytes");
    return 0;
}
