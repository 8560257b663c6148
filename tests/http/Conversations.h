// What devices may send, good and bad, with what becomes of it wherever the connection ends.
#pragma once

#include "tests/http/WireOutcome.h"
#include "tests/support/Cuts.h"

#include <string>
#include <vector>

using support::Piece;

/// One answer, or a part of one. The outcome when all of it arrives is that of its last piece. How
/// it is cut on its way makes no difference to any of these.
struct Conversation
{
    const char* name;
    Reader reader;
    HTTPResponse before;       ///< The response record when reading begins.
    bool endsByItself;         ///< The reader returns while the connection stays open.
    std::string closedAtStart; ///< Outcome when the connection is closed without a byte.
    std::vector<Piece> pieces;
    std::string unread; ///< What the reader leaves when all has arrived.
};

std::vector<Conversation> headConversations();
std::vector<Conversation> plainConversations();
std::vector<Conversation> chunkedConversations();
std::vector<Conversation> oddChunkConversations();
std::vector<Conversation> carriedOverConversations();
