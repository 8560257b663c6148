// Queries the camera about its card.
#pragma once

#include "verify/Camera.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace verify {

/// The value read from an answer, or the error that prevented reading it.
template <class Value>
struct Reply
{
    CameraError error;
    Value value{};
};

/// The number of recordings, as text for the list command and as a number.
struct CardCount
{
    std::string text;
    std::uint64_t number = 0;
};

/// Returns the count in the answer to a count command, or nothing if the answer is invalid.
std::optional<CardCount> readCount(const std::string& answer);

/// Returns the names in the answer to a list command, in order; the name of an entry without one is
/// empty. Returns nothing if the list is truncated.
std::optional<std::vector<std::string>> readNames(const std::string& answer);

/// Returns the exact size in the answer to a details command, or nothing without a valid size.
std::optional<std::uint64_t> readSize(const std::string& answer);

/// The queries about the card, in the form of the window's requests. Names are sent byte for byte
/// as the camera listed them.
class CardReader
{
public:
    explicit CardReader(const Camera& camera) : m_camera(camera) {}

    Reply<CardCount> count() const;
    /// Returns the names on the card. `countText`: the text of the count, sent unchanged.
    Reply<std::vector<std::string>> names(const std::string& countText) const;
    Reply<std::uint64_t> size(const std::string& name) const;

    /// Reads a recording. The handler is called with its bytes in order and returns false to stop.
    /// If the announced length differs from `size`, reads no body and returns that length.
    Reply<std::optional<std::uint64_t>> content(const std::string& name, std::uint64_t size,
                                                const std::function<bool(std::string_view)>&) const;

private:
    Reply<std::string> ask(const char* command, const std::string& argument,
                           std::uint64_t limit) const;

    const Camera& m_camera;
};

} // namespace verify
