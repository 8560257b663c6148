// Durations in MP4 recordings, read and written.
#pragma once

#include "simulator/Content.h"

#include <cstdint>
#include <optional>
#include <string>

namespace simulator {

/// The whole seconds that the movie header box ("moov" / "mvhd") of an MP4 recording states, or
/// nothing where there is no such box. Follows box lengths only, reads no media data.
std::optional<std::uint64_t> mp4Duration(const Content& content, std::uint64_t size);

/// The first boxes of an MP4 recording ("ftyp", "moov" with its "mvhd", and the head of an "mdat"
/// that reaches to the end of the recording) for one of the given duration in seconds.
std::string mp4Head(std::uint32_t seconds);

} // namespace simulator
