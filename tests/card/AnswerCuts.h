// The body of a camera answer, split and closed at every byte.
#pragma once

#include "tests/kit/Cuts.h"

#include <functional>
#include <string>
#include <vector>

/// A function that describes a received answer as a text.
using AnswerReader = std::function<std::string(const std::string& answer)>;

/// Fails the test unless every way to deliver the answer gives the expected result. With its length
/// announced, the answer gives the result of its last piece however it is split, and is rejected if
/// the connection closes early. Without a length the answer ends with the first receive, so the
/// result is that of the bytes before the first split or the close.
void checkEveryCut(const std::vector<support::Piece>& pieces, const AnswerReader& read);
