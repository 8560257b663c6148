// The body of a camera's answer, delivered in every way a connection may deliver it.
#pragma once

#include "tests/support/Cuts.h"

#include <functional>
#include <string>
#include <vector>

/// What is made of an answer that has been received, as a text.
using AnswerReader = std::function<std::string(const std::string& answer)>;

/// Fails the test unless the answer reads as its last piece says, however it is cut, when its
/// length is announced, and is no answer when the connection is closed before its end. An answer
/// without a length ends with the first receive: it reads as far as the first cut, or the end, as
/// the pieces say.
void checkEveryCut(const std::vector<support::Piece>& pieces, const AnswerReader& read);
