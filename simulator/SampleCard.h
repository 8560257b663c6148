// Cards with generated recordings.
#pragma once

#include "simulator/Card.h"

#include <cstdint>
#include <string>

namespace simulator {

/// The available generated cards.
enum class Sample {
    Boundary, ///< eleven recordings around the limits of the size display and of buffers
    Dive      ///< nine recordings of one diving trip, with matching sizes, durations and dates
};

/// Returns a card of generated recordings. Each has an MP4 head, followed by bytes that depend only
/// on the seed and the recording's position on the card.
Card sampleCard(Sample sample, std::uint64_t seed);

/// Writes all recordings of the card into a folder, which is created if missing; their creation
/// times become the files' times. An identical existing file is left alone; a different one is an
/// error. Returns an error text, empty on success.
std::string writeCard(const Card& card, const std::string& path);

} // namespace simulator
