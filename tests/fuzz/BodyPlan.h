// The input of the targets that receive a body.
#pragma once

#include "tests/fuzz/MemoryPeer.h"

#include <vector>

namespace fuzz {

/// A body, the size of the pieces in which it is delivered, and numbers that the target defines.
struct BodyPlan
{
    std::vector<long long> numbers;
    std::size_t pieceSize = longestInput;
    std::string body;
};

/// Parses a line with `count` decimal numbers and one that sets the size of the pieces, then the
/// body. Missing numbers are 0; an input without a line feed is a body in one piece.
inline BodyPlan bodyPlanOf(const std::string& input, std::size_t count)
{
    BodyPlan plan{std::vector<long long>(count), longestInput, input};
    const std::size_t lineEnd = input.find('\n');
    if (lineEnd != std::string::npos) {
        const std::string line = input.substr(0, lineEnd);
        const char* next = line.c_str();
        char* end = nullptr;
        for (long long& number : plan.numbers) {
            number = std::strtoll(next, &end, 10);
            next = end;
        }
        plan.pieceSize = 1 + std::strtoul(next, nullptr, 10) % longestInput;
        plan.body = input.substr(lineEnd + 1);
    }
    return plan;
}

/// Judges the reception of an input's body with each end of the connection, and byte by byte.
template <class Judge>
void judgeReceptions(const std::string& input, std::size_t count, const Judge& judge)
{
    BodyPlan plan = bodyPlanOf(input, count);
    judge(plan, End::Closed);
    judge(plan, End::Failed);
    plan.pieceSize = 1;
    judge(plan, End::Closed);
}

} // namespace fuzz
