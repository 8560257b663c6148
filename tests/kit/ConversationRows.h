// Conversations as rows of a test.
#pragma once

#include "tests/kit/ConversationFile.h"
#include "tests/kit/RecordedText.h"

#include <QTest>

Q_DECLARE_METATYPE(support::Conversation)

namespace support {

/// Adds a column "conversation" and a row for each conversation that fits. An error in the
/// conversations fails the test.
template <class Fits>
void addRows(const Conversations& conversations, const Fits& fits)
{
    QTest::addColumn<Conversation>("conversation");
    QVERIFY2(conversations.error.empty(), conversations.error.c_str());
    for (const Conversation& conversation : conversations.all) {
        if (fits(conversation)) {
            QTest::newRow(conversation.name.c_str()) << conversation;
        }
    }
}

/// Adds the conversations that fit, from the files in a folder of tests/data/conversations.
template <class Fits>
void addConversations(const char* folder, const Fits& fits)
{
    const QString path = dataPath(QStringLiteral("conversations/") + QLatin1String(folder));
    addRows(readConversations(path.toStdString()), fits);
}

/// Adds the conversations that are played with every cut, and those that state their own cuts.
inline void addConversationsWithoutPauses(const char* folder)
{
    addConversations(folder, [](const Conversation& one) { return !one.hasPauses(); });
}
inline void addConversationsWithPauses(const char* folder)
{
    addConversations(folder, [](const Conversation& one) { return one.hasPauses(); });
}

/// Adds the conversations that state the result for every position at which the peer may close.
inline void addConversationsThatMayEnd(const char* folder)
{
    addConversations(folder, [](const Conversation& one) { return one.mayEndAnywhere(); });
}

} // namespace support
