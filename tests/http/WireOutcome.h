// Makes one call of the HTTP client and describes the result in one line.
#pragma once

#include "http/HTTPRecords.h"
#include "tests/kit/PieceSender.h"

#include <string>

/// The response and body that a caller passes from one call to the next.
struct Record
{
    HTTPResponse response;
    std::string body;
};

/// Describes a result: "true" or "false", every field of the response that differs from a new
/// response's, the header map in braces, the body in quotes. Control characters and non-ASCII bytes
/// are escaped, long runs of one character are shortened.
std::string describe(bool result, const Record& record);

/// Splits a call such as "readBody given length=5 received=3" at "given": returns the part before
/// it and sets `record` to the state after it, which is written as in describe(). Returns an error
/// text if the state contains an unknown word. If the call has no "given", returns it unchanged and
/// does not change `record`.
std::string prepared(const std::string& call, Record& record);

struct Outcome
{
    std::string text;
    std::string unread; ///< In quotes; empty if everything was read.
};

/// Makes the call over a socket pair: readHeader, readBody, both of these for "get PATH", stopPost
/// for "post PATH DATA", or a session's "readLine LIMIT" and "readLimit COUNT", which get a text
/// with old contents. If the client does not return within five seconds it is stopped, and the text
/// says so.
Outcome readFrom(const std::string& call, Record& record, const support::Delivery& delivery);

/// Makes the call over a connection on which receiving fails after these bytes, and returns the
/// text of the outcome.
std::string readFromFailing(const std::string& call, Record& record, const std::string& bytes);
