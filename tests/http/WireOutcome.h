// Reads from a connection that delivers given bytes in given pieces, and describes the outcome in
// one line.
#pragma once

#include "http/HTTPRecords.h"
#include "tests/support/PieceSender.h"

#include <string>

/// What to read.
enum class Reader { Head, Body, Answer };

/// Returns the outcome of reading as a text: the result, every field of the response that differs
/// from a new one, the header map in braces, the body in quotes, and the unread bytes. Line endings
/// and non-ASCII bytes are escaped.
struct Outcome
{
    std::string text;
    std::string unread;
};

/// Reads over a socket pair into the given response. If the parser does not return within five
/// seconds it is stopped, and the text says so.
Outcome readFrom(Reader reader, const HTTPResponse& before, const support::Delivery& delivery);
