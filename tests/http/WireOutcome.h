// Makes one call of the HTTP client and describes the result in one line.
#pragma once

#include "http/HTTPRecords.h"
#include "tests/kit/PieceSender.h"

#include <string>

/// What a client passes from one call to the next.
struct Record
{
    HTTPResponse response;
    std::string body;
};

/// Describes a result: every field of the response that differs from a new one, the header map in
/// braces, the body in quotes. Line endings and non-ASCII bytes are escaped, long runs of one
/// character are shortened.
std::string describe(bool result, const Record& record);

/// Returns a call's text up to "given". The record becomes what follows it, which is in the words
/// of a result: "readBody given length=5 received=3". If it does not, the text returned says so.
std::string prepared(const std::string& call, Record& record);

struct Outcome
{
    std::string text;
    std::string unread; ///< In quotes; empty if everything was read.
};

/// Makes the call over a socket pair: readHeader, readBody, both for "get PATH", or stopPost for
/// "post PATH DATA". If the client does not return within five seconds it is stopped, and the text
/// says so.
Outcome readFrom(const std::string& call, Record& record, const support::Delivery& delivery);
