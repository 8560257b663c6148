// The body of a camera answer, split and closed at every byte.
#pragma once

#include "tests/support/Cuts.h"

#include <functional>
#include <string>
#include <vector>

/// Describes a received answer as a text.
using AnswerReader = std::function<std::string(const std::string& answer)>;

/// Fails the test unless the answer, with its length announced, reads as its last piece says
/// however it is split, and is rejected if the connection closes before its end. Without a length
/// an answer ends with the first receive: it reads up to the first split, or the end, as the pieces
/// say.
void checkEveryCut(const std::vector<support::Piece>& pieces, const AnswerReader& read);
