// Valid and invalid input from devices, with the outcome for each point at which the connection may
// end.
#pragma once

#include "tests/http/WireOutcome.h"
#include "tests/support/Cuts.h"

#include <string>
#include <vector>

using support::Piece;

/// One answer or a part of one. The outcome of the last piece is that of the complete answer.
/// Splitting does not change any of these outcomes.
struct Conversation
{
    const char* name;
    Reader reader;
    HTTPResponse before;       ///< The response record before reading.
    bool endsByItself;         ///< The parser returns although the connection is still open.
    std::string closedAtStart; ///< Outcome if the connection is closed without a byte.
    std::vector<Piece> pieces;
    std::string unread; ///< Unread bytes after everything was delivered.
};

std::vector<Conversation> headConversations();
std::vector<Conversation> plainConversations();
std::vector<Conversation> chunkedConversations();
std::vector<Conversation> oddChunkConversations();
std::vector<Conversation> carriedOverConversations();
