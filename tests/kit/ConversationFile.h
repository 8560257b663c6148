// Conversations of a client with its peer, written as plain text:
//
//   # bytes missing from a broken chunk are taken from the next body
//   client readBody given chunked left=2 | false chunked left=2
//   < 5                                  | false chunked received=1 left=1 "5"
//   < \r                                 | false chunked received=2 "5\r"
//   < \n                                 | false chunked last received=2 "5\r"
//   < hello\r\nnext                      = true chunked last received=2 "5\r" unread "next"
//
// `#` is a comment; the one right above `client` names the conversation. `client` states the call
// and `<` what the peer sends. `=`, in the last `<` line or below it, states the result and, after
// `unread`, the bytes that the client leaves unread. Without an empty line between, a further
// `client` line begins the next call of the conversation, and a further `<` line continues the call
// above. The player defines the words of calls and results.
//
// `|` states the result if the connection ends there: in the `client` line before the first byte,
// in a `<` line after any of its bytes. Either every line above the last `<` line has a `|`, or no
// line has one.
//
// A `<` line may state an action after its bytes. `! close`: the peer closes. `! reset`: the peer
// resets the connection. `! pause`: the peer waits until the client has received everything; a
// conversation with pauses is split nowhere else.
//
// `then as in: NAME` continues with the lines of an earlier conversation in the same file that
// follow its first `<` line.
//
// Bytes are escaped: \r \n \\ \xFF, \s (a space at the start or the end), \(25000 x) (a repeated
// character).
#pragma once

#include "tests/kit/Cuts.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace support {

/// One call and the peer's part of it.
struct Exchange
{
    std::string call;          ///< Empty if the call above goes on.
    std::string closedAtStart; ///< Result if the connection closes without a byte; or empty.
    std::vector<Piece> pieces; ///< One for each `<` line; the last one's outcome is the result.
    std::vector<std::size_t> pauses; ///< Positions in the bytes.
    bool peerCloses;
    bool peerResets;
    std::string result;
    std::string unread; ///< In quotes; empty if there is nothing.
};

struct Conversation
{
    std::string name; ///< "FILE: NAME", without the file's extension.
    std::vector<Exchange> exchanges;

    bool mayEndAnywhere() const
    {
        return !exchanges.empty() && !exchanges.front().closedAtStart.empty();
    }
    bool hasPauses() const
    {
        return std::any_of(exchanges.begin(), exchanges.end(),
                           [](const Exchange& exchange) { return !exchange.pauses.empty(); });
    }
};

struct Conversations
{
    std::vector<Conversation> all;
    std::string error; ///< "FILE:LINE: REASON" or "PATH: no conversation"; empty if there is none.
};

/// Parses every file of a folder, or one file, up to the first error. Of a page, whose name
/// ends with ".md", only the blocks that are fenced with "```conversation" and "```" are parsed.
Conversations readConversations(const std::string& path);

} // namespace support
