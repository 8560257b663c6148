// Cards of made-up recordings.
#pragma once

#include "simulator/Card.h"

#include <cstdint>
#include <string>

namespace simulator {

/// The made-up cards that there are.
enum class Sample {
    Boundary, ///< eleven recordings from 500 bytes to 64 MB, at the limits of texts and buffers
    Dive      ///< nine recordings of one trip, as a user brings them home
};

/// A card of made-up recordings, each with an MP4 head and content that depends on the seed and its
/// place alone.
Card sampleCard(Sample sample, std::uint64_t seed);

/// Writes all recordings of the card into a folder, which is made when missing; their creation
/// times become the files' times. A file that is there already is left alone when it is the same,
/// and is an error when it differs. Returns an error text, empty on success.
std::string writeCard(const Card& card, const std::string& path);

} // namespace simulator
