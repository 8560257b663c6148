// What the tests shared by both link threads use of each module and its thread.
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
    QStringList connecting; ///< Log lines of each connection, from "run begin" on.
    QString afterClose;     ///< Result of a close by the module.
    std::unique_ptr<ModuleClientThread> (*newThread)(QObject* parent);
};

const Module& controlModule();
const Module& groundModule();

/// Returns the module in a conversation with a link thread.
const Module& moduleOf(const support::Conversation& conversation);
