// The modules and their link threads, as the tests that both threads share see them.
#pragma once

#include "link/ModuleClientThread.h"
#include "tests/kit/ConversationFile.h"

#include <memory>
#include <string>

#include <QByteArray>
#include <QString>
#include <QStringList>

struct Module
{
    std::string name; ///< As in the conversations.
    QByteArray address;
    char startByte;
    QString threadName;
    QStringList methods;    ///< Signals and slots of the thread.
    QStringList connecting; ///< Log lines from the start of run(), or a reconnection, on.
    QString afterClose;     ///< What happens when the module closes a connection.
    std::unique_ptr<ModuleClientThread> (*newThread)(QObject* parent);
};

const Module& controlModule();
const Module& groundModule();

/// Returns the module in a conversation with a link thread.
const Module& moduleOf(const support::Conversation& conversation);
