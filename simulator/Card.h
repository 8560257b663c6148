// The camera's memory card.
#pragma once

#include "simulator/Content.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// One recording of the card, as the camera tells of it.
struct Recording
{
    std::string name;
    std::uint64_t size = 0;     ///< bytes
    std::string created;        ///< YYYYMMDDhhmmss, the camera's local time
    std::uint64_t duration = 0; ///< whole seconds
    std::shared_ptr<const Content> content;
    std::size_t ordinal = 0; ///< its place on the full card, kept when others are deleted
};

/// The camera's memory card. It lives in memory: removing a recording here never touches a file.
class Card
{
public:
    /// Adds a recording behind the others and gives it its ordinal.
    void add(Recording recording);
    const std::vector<Recording>& recordings() const { return m_recordings; }
    void remove(std::size_t index);
    /// Appends made-up bytes to a recording.
    void grow(std::size_t index, std::uint64_t bytes);
    void removeAll() { m_recordings.clear(); }

private:
    std::vector<Recording> m_recordings;
};

/// The regular files of a folder, sorted by the bytes of their names; hidden ones are left out, a
/// link to a file counts as the file. Creation time: the file's time of last change in the local
/// time zone. Duration: from the MP4 header, or else by a nominal 8 Mbit/s.
/// Returns an error text, empty on success.
std::string readFolderCard(const std::string& path, Card& card);

/// Recordings REC00001.MP4 and on, of 4,000 bytes each.
Card uniformCard(std::size_t count, std::uint64_t seed);

} // namespace simulator
