// Durations in MP4 recordings, read and written.
#pragma once

#include "simulator/Content.h"

#include <cstdint>
#include <optional>
#include <string>

namespace simulator {

/// Returns the whole seconds stated by the movie header box ("moov" / "mvhd") of an MP4 recording,
/// or nothing if no duration is stated. Follows box lengths only and reads no media data.
std::optional<std::uint64_t> mp4Duration(const Content& content, std::uint64_t size);

/// Returns the first boxes of an MP4 recording with this duration in seconds: "ftyp", "moov" with
/// its "mvhd", and the head of an "mdat" that extends to the end of the recording.
std::string mp4Head(std::uint32_t seconds);

} // namespace simulator
