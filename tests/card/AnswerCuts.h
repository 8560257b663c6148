// The body of a camera answer, split and closed at every byte.
#pragma once

#include "tests/kit/Cuts.h"

#include <functional>
#include <string>
#include <vector>

/// A function that describes a received answer as a text.
using AnswerReader = std::function<std::string(const std::string& answer)>;

/// Delivers the answer whole, byte by byte, split at every byte and closed after every byte, each
/// with and without an announced length. Fails the test if a result is unexpected. With a length, a
/// complete answer must give `pieces.back().closed`, and one that is closed early must be rejected.
/// Without a length, reading ends after the first receive: the result must be the `closed` text for
/// the bytes before the first split or the close.
void checkEveryCut(const std::vector<support::Piece>& pieces, const AnswerReader& read);
