// Input that arrives in pieces, split anywhere, and connections that end anywhere in it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <QString>
#include <QVector>

namespace support {

/// Bytes, and the expected outcome if the connection closes after any of them.
struct Piece
{
    std::string bytes;
    std::string closed;
};

/// Returns the bytes of all pieces.
std::string allBytes(const std::vector<Piece>& pieces);

/// Returns the expected outcome if the connection closes after the first `count` bytes; that is
/// `closedAtStart` for 0.
std::string closedBehind(const std::vector<Piece>& pieces, const std::string& closedAtStart,
                         std::size_t count);

/// Splits the bytes at the given positions, which are in ascending order.
std::vector<std::string> cut(const std::string& bytes, const std::vector<std::size_t>& positions);
std::vector<std::string> singleBytes(const std::string& bytes);

/// An outcome that holds from this position up to the position of the next step.
struct Step
{
    std::size_t from;
    QString outcome;
};

/// Returns the outcome at a position; empty before the first step.
QString outcomeAt(const QVector<Step>& steps, std::size_t position);

/// Returns the bytes with control characters and non-ASCII bytes escaped.
std::string printable(const std::string& bytes);

/// Like printable(); in addition, a run of a hundred characters or more is written as "\(100 x)".
std::string shortened(const std::string& bytes);

/// Returns the shortened bytes in quotes.
std::string inQuotes(const std::string& bytes);

} // namespace support
