// The head of an answer: its end and its fields.
#pragma once

#include "download/resp_header.h"

#include <string>

namespace download {

/// A head that is received byte by byte.
class ResponseHead
{
public:
    /// Appends a byte and returns whether the head is complete, that is, whether its last four
    /// characters are carriage returns and line feeds in any order. Skips a zero byte and returns
    /// false, because the head is a C string. Throws std::bad_alloc if memory runs out.
    bool add(char byte);

    /// Returns the head received so far as a C string, valid until the next add().
    char* text() { return m_text.data(); }

private:
    std::string m_text;
    int m_lineEndRun = 0; // carriage returns and line feeds at the end of the text
};

/// Returns the status, type and length in a head. Each is searched for anywhere in the text,
/// case-sensitively, and read as the word after the one that contains the name: "Content-Length: 5"
/// has a length, "Content-Length:5" has none.
resp_header parseHead(const char* text);

} // namespace download
