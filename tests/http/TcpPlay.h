// Plays conversations of `get PATH` and `post PATH DATA` over TCP, in the private network.
#pragma once

#include "tests/kit/ConversationFile.h"
#include "tests/kit/ScriptedServer.h"

/// Sends the answer of an exchange, with pauses where the conversation has them.
void sendWithPauses(support::Peer& peer, const support::Exchange& exchange);
/// Sends the answer of an exchange byte by byte.
void sendBytewise(support::Peer& peer, const support::Exchange& exchange);

/// Makes the calls of a conversation, each over a new connection, and compares the results and the
/// requests. The client must close each connection.
void playOverTcp(const support::Conversation& conversation,
                 void (*send)(support::Peer&, const support::Exchange&) = sendWithPauses);
