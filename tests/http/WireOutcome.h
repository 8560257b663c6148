// Reading from a connection whose other end delivers given bytes in given pieces, and telling in
// one line what became of it.
#pragma once

#include "http/HTTPRecords.h"
#include "tests/support/PieceSender.h"

#include <string>

/// What a reader is asked to read.
enum class Reader { Head, Body, Answer };

/// What came of reading, as a text: the result, then every field of the response that is not as in
/// a new one, the header map in braces, the body in quotes, and what stayed unread. Line ends and
/// bytes beyond ASCII are written as escapes.
struct Outcome
{
    std::string text;
    std::string unread;
};

/// Reads over a socket pair with the response as given. A reader that does not return within five
/// seconds is stopped, and the text says so.
Outcome readFrom(Reader reader, const HTTPResponse& before, const support::Delivery& delivery);
