// The conversations in tests/data/conversations/http as rows of a test.
#pragma once

#include "tests/kit/ConversationFile.h"

#include <QByteArray>
#include <QTest>

Q_DECLARE_METATYPE(support::Conversation)

/// Adds a column "conversation" and a row for each conversation that fits.
inline void addConversations(bool (*fits)(const support::Conversation&))
{
    QTest::addColumn<support::Conversation>("conversation");
    const support::Conversations conversations =
        support::readConversations(TEST_DATA "/conversations/http");
    QVERIFY2(conversations.error.empty(), conversations.error.c_str());
    for (const support::Conversation& conversation : conversations.all) {
        if (fits(conversation)) {
            QTest::newRow(conversation.name.c_str()) << conversation;
        }
    }
}
