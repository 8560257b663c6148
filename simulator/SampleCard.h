// Cards with generated recordings.
#pragma once

#include "simulator/Card.h"

#include <cstdint>
#include <string>

namespace simulator {

/// The available generated cards.
enum class Sample {
    Boundary, ///< eleven recordings from 500 bytes to 64 MB, at the limits of texts and buffers
    Dive      ///< nine recordings of one trip, as a user records them
};

/// Returns a card of generated recordings, each with an MP4 head and content that depends only on
/// the seed and its position on the card.
Card sampleCard(Sample sample, std::uint64_t seed);

/// Writes all recordings of the card into a folder, which is created if missing; their creation
/// times become the files' times. An identical existing file is left alone; a different one is an
/// error. Returns an error text, empty on success.
std::string writeCard(const Card& card, const std::string& path);

} // namespace simulator
