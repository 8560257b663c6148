// An answer's head: where it ends, and what it says.
#pragma once

#include "download/resp_header.h"

#include <string>

namespace download {

/// A head on its way in, byte by byte.
class ResponseHead
{
public:
    /// Adds a byte and tells whether the head ends with it, that is whether its last four
    /// characters are carriage returns and line feeds in any mix. Zero bytes are left out: the head
    /// is a C string. Throws std::bad_alloc when it has outgrown the memory.
    bool add(char byte);

    /// The head so far. Valid until the next byte.
    char* text() { return m_text.data(); }

private:
    std::string m_text;
    int m_lineEndRun = 0; // carriage returns and line feeds at the end of the text
};

/// Status, type and length of a head. Each is searched anywhere in the text, case-sensitively, and
/// read as the word behind the one that holds the name: "Content-Length: 5" has a length,
/// "Content-Length:5" has none.
resp_header parseHead(const char* text);

} // namespace download
