// Plays the conversations in tests/data/conversations/window, in the private network.
//
// `client` states what the user does: `browse`, `delete all` and `format` press the button of that
// name (tests/data/texts.tsv), and `delete 1 3` selects the rows 1 and 3, counted from 0, and
// presses the delete button. `given NAMES` links the window first and lists a card with these
// files, without their details.
//
// Each `<` line is the camera's answer to one request, after which the camera closes; an empty `<`
// line means that the camera closes without an answer. A head with the body's length is added to an
// answer without a head.
//
// `=` states the requests by their short names, or `no request`, then a message box if one opens,
// and after a colon the table, or `no rows`. Each row is in brackets, with its cells separated by
// bars; a row without details shows only its name. If Delete All Files is disabled, the result says
// so at its end.
#pragma once

#include "tests/kit/ConversationRows.h"
#include "tests/kit/UserWindow.h"

#include <QString>

/// Adds a column "conversation" and a row for each conversation of a file in that folder, such as
/// "browse" for browse.txt.
void addConversations(const char* file);

/// Plays the user in a new window, and compares the requests and what the window shows.
void playInWindow(const support::Conversation& conversation);

/// Returns the table as the conversations state it, or "no rows".
QString shownTable(const UserWindow& user);
