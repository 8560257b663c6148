// What is asked of the camera about its card.
#pragma once

#include "verify/Camera.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace verify {

/// An answer, or why there is none.
template <class Value>
struct Reply
{
    CameraError error;
    Value value{};
};

/// The number of recordings: as text, which goes into the list command, and as a number.
struct CardCount
{
    std::string text;
    std::uint64_t number = 0;
};

/// The bytes of the answer to a count command; nothing if they are no such answer.
std::optional<CardCount> readCount(const std::string& answer);

/// The names in the answer to a list command, in its order; an entry without one of its own has an
/// empty name. Nothing if the list has no end, as one that was cut.
std::optional<std::vector<std::string>> readNames(const std::string& answer);

/// The exact size in the answer to a details command; nothing if there is none.
std::optional<std::uint64_t> readSize(const std::string& answer);

/// Asks with the same requests as the window. Names are sent as they are.
class CardReader
{
public:
    explicit CardReader(const Camera& camera) : m_camera(camera) {}

    Reply<CardCount> count() const;
    /// Takes the count's text.
    Reply<std::vector<std::string>> names(const std::string& countText) const;
    Reply<std::uint64_t> size(const std::string& name) const;

    /// Reads a recording. The handler gets its bytes in order and returns false to end it. The
    /// value is the announced length where that is not `size`; nothing is read then.
    Reply<std::optional<std::uint64_t>> content(const std::string& name, std::uint64_t size,
                                                const std::function<bool(std::string_view)>&) const;

private:
    Reply<std::string> ask(const char* command, const std::string& argument,
                           std::uint64_t limit) const;

    const Camera& m_camera;
};

} // namespace verify
