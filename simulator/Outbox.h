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
    std::shared_ptr<const Content> content; ///< if set, the bytes are its range begin..end
    std::uint64_t begin = 0;
    std::uint64_t end = 0;

    static Part literal(std::string text) { return {std::move(text), nullptr, 0, 0}; }
    std::uint64_t size() const { return content ? end - begin : bytes.size(); }
};

/// The data to send, in order; adjacent literal parts share one write.
using Message = std::vector<Part>;

std::uint64_t messageSize(const Message& message);
/// Appends a part; adjacent literal parts become one.
void append(Message& message, Part part);
/// Removes the first `size` bytes from a message and returns them.
Message takeFront(Message& message, std::uint64_t size);

/// One step of a connection; executed after the steps queued before it.
struct Step
{
    enum class Kind {
        Send,      ///< send `part`
        Pause,     ///< wait for `pause`
        Hold,      ///< wait until `held` returns false
        Call,      ///< call `call`
        HalfClose, ///< close the sending side, continue receiving
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
