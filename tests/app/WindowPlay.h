// Plays the conversations in tests/data/conversations/window, in the private network.
//
// `client` states what the user does: presses the button of that text (tests/data/texts.tsv names
// the texts: `browse`, `delete all`, `format`), or `delete` with the numbers of the rows. With
// `given NAMES` the window has been linked before and lists a card with these files, without their
// details. Each `<` line is the camera's answer to one request, after which the camera closes; an
// empty line means that it closes without an answer. A head with the body's length is added to an
// answer without a head. `=` states the requests, by short names or targets, then a message box if
// one opens, and after a colon the table: each row in brackets, its cells separated by bars.
#pragma once

#include "tests/kit/ConversationRows.h"
#include "tests/kit/UserWindow.h"

#include <QString>

/// Adds a column "conversation" and a row for each conversation of that file in the folder.
void addConversations(const char* file);

/// Makes the user's steps in a new window, and compares the requests and what the window shows.
void playInWindow(const support::Conversation& conversation);

/// Returns the table as in the files, or "no rows".
QString shownTable(const UserWindow& user);
