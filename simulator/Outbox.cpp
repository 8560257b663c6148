#include "simulator/Outbox.h"

namespace simulator {

std::uint64_t messageSize(const Message& message)
{
    std::uint64_t size = 0;
    for (const Part& part : message) {
        size += part.size();
    }
    return size;
}

void append(Message& message, Part part)
{
    if (part.size() == 0) {
        return;
    }
    if (!part.content && !message.empty() && !message.back().content) {
        message.back().bytes += part.bytes;
        return;
    }
    message.push_back(std::move(part));
}

Message takeFront(Message& message, std::uint64_t size)
{
    Message front;
    Message rest;
    for (Part& part : message) {
        const std::uint64_t length = part.size();
        if (length <= size) {
            size -= length;
            append(front, std::move(part));
            continue;
        }
        Part head = part;
        if (part.content) {
            head.end = head.begin + size;
            part.begin += size;
        } else {
            head.bytes.resize(static_cast<std::size_t>(size));
            part.bytes.erase(0, static_cast<std::size_t>(size));
        }
        size = 0;
        append(front, std::move(head));
        append(rest, std::move(part));
    }
    message = std::move(rest);
    return front;
}

} // namespace simulator
