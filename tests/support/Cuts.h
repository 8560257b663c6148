// Bytes that arrive in pieces, wherever the cuts are, and connections that end anywhere in them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace support {

/// Bytes, and the outcome's text when the connection is closed behind any one of them: behind the
/// first, behind the last, or between.
struct Piece
{
    std::string bytes;
    std::string closed;
};

/// The bytes of all pieces.
std::string allBytes(const std::vector<Piece>& pieces);

/// The outcome expected when the connection is closed behind the first `count` bytes.
std::string closedBehind(const std::vector<Piece>& pieces, const std::string& closedAtStart,
                         std::size_t count);

/// The bytes cut before the given positions, which ascend.
std::vector<std::string> cut(const std::string& bytes, const std::vector<std::size_t>& positions);
std::vector<std::string> singleBytes(const std::string& bytes);

/// Line ends and bytes beyond ASCII written as escapes.
std::string printable(const std::string& bytes);

} // namespace support
