// Plays the conversations in tests/data/conversations/window, in the private network.
//
// `client` states what the user does: presses the button of that text (tests/data/texts.tsv names
// the texts: `browse`, `delete all`, `format`), or `delete` with the numbers of the rows. After
// `given`, the window is linked and lists a card with these files, whose details it could not get.
// Each `<` line is the camera's answer to one request, after which the camera closes; an empty one
// is no answer. A head with the body's length is added to an answer without one. `=` states the
// requests, by short names or targets, a message box, and after a colon the table: a row in
// brackets, its cells separated by bars.
#pragma once

#include "tests/kit/ConversationFile.h"
#include "tests/kit/UserWindow.h"

#include <QMetaType>
#include <QString>

Q_DECLARE_METATYPE(support::Conversation)

/// Adds a column "conversation" and a row for each conversation of that file in the folder.
void addConversations(const char* file);

/// Makes the user's steps in a new window, and compares the requests and what the window shows.
void playInWindow(const support::Conversation& conversation);

/// Returns the table as in the files, or "no rows".
QString shownTable(const UserWindow& user);
