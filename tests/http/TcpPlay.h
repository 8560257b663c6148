// Plays conversations of `get PATH` and `post PATH DATA` over TCP, in the private network.
#pragma once

#include "tests/kit/ConversationFile.h"
#include "tests/kit/ScriptedServer.h"

/// Send the answer of an exchange.
void sendWithPauses(support::Peer& peer, const support::Exchange& exchange);
void sendBytewise(support::Peer& peer, const support::Exchange& exchange);

/// Makes the calls of a conversation, each over a connection that the client must close, and
/// compares the results and the requests.
void playOverTcp(const support::Conversation& conversation,
                 void (*send)(support::Peer&, const support::Exchange&) = sendWithPauses);
