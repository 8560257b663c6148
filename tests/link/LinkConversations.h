// The conversations of tests/data/conversations/link and docs/link-protocol.md. Their bytes are
// hexadecimal; 78*94 is the byte 78 ninety-four times. Without `|`, each `<` line is one receive.
//
//   # six ticks and another receive end the connection
//   client control
//   < AA AF 04 01 00 5E = sends AA AF 04 01 01 5F, linked
//   client control after 6 ticks
//   < AA AF 77 01 00 00 = lost, logs "heartBeat is 6,break", connects
//   < AA AF 04 01 00 5E = sends AA AF 04 01 01 5F, linked
//
// `client control` and `client ground` name the link thread that is connected to the module.
// `after` states how often the thread's heartbeat timer ticks before the bytes are sent; in the
// first call, the ticks come before the connection. The result is, in this order, what the thread
// sends, which signals it emits, what it logs, and whether it connects again; after `connects`, the
// next `<` line is sent on the new connection.
//
// `client receiver` names the receive loop of one connection. The result is what the loop passes to
// its handler, why the loop ends, and how many ticks are left in the count.
//
// In a conversation with `|`, all `<` lines together are one receive, and `|` states the result if
// that receive ends there.
#pragma once

#include "tests/kit/ConversationRows.h"

#include <string>

/// Returns the conversations whose first call begins with the word, with their bytes decoded, or an
/// error. The page must contain conversations with both modules.
support::Conversations linkConversations(const std::string& client);

/// Returns the number in "after 6 ticks", or 0.
int ticksOf(const support::Exchange& exchange);

/// Adds a column "conversation" and a row for each conversation of that client: those that state
/// results with `|` if `mayEndAnywhere` is true, otherwise those that state none.
inline void addConversations(const std::string& client, bool mayEndAnywhere = false)
{
    support::addRows(linkConversations(client), [&](const support::Conversation& conversation) {
        return conversation.mayEndAnywhere() == mayEndAnywhere;
    });
}
