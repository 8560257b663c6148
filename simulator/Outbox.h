// Bytes that wait to be sent.
#pragma once

#include "simulator/Clock.h"
#include "simulator/Content.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace simulator {

/// A run of bytes to send: literal ones, or a range of a recording's content.
struct Part
{
    std::string bytes;
    std::shared_ptr<const Content> content; ///< when set, the range begin..end of it counts
    std::uint64_t begin = 0;
    std::uint64_t end = 0;

    static Part literal(std::string text) { return {std::move(text), nullptr, 0, 0}; }
    std::uint64_t size() const { return content ? end - begin : bytes.size(); }
};

/// The data to send, in order; adjacent literal parts share one write.
using Message = std::vector<Part>;

std::uint64_t messageSize(const Message& message);
/// Adds a part, joining literal bytes to literal bytes.
void append(Message& message, Part part);
/// Cuts a message in two: takes its first `size` bytes off and returns them.
Message takeFront(Message& message, std::uint64_t size);

/// One step of a connection; executed after the steps queued before it.
struct Step
{
    enum class Kind {
        Send,      ///< the part
        Pause,     ///< wait for `pause`
        Hold,      ///< wait until `held` says no
        Call,      ///< call `call`
        HalfClose, ///< close the sending side, go on receiving
        Close,     ///< orderly end
        Reset      ///< end by a reset
    };
    Kind kind;
    Part part{};
    Milliseconds pause{};
    std::function<bool()> held{};
    std::function<void()> call{};
};

} // namespace simulator
