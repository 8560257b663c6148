// What both link threads have in common.
#pragma once

#include "tests/link/Modules.h"

#include <QObject>

/// The test functions that the tests of both threads inherit.
class LinkThreadTest : public QObject
{
    Q_OBJECT

protected:
    explicit LinkThreadTest(const Module& module) : m_module(module) {}

    const Module& m_module;

private slots:
    void metaObjectHasTheSignalsAndSlots();
    void newThreadKnowsTheModule();
    void constructionAndDestructionAreLogged();
    void timerTicksEachSecondEvenBeforeTheThreadStarts();
    void conversationHappensAsWritten_data();
    void conversationHappensAsWritten();
    void linkThreadBlocksThePipeSignal();
    void closedConnectionIsReopenedImmediately();
    void oldSocketsStayOpenUntilTheObjectEnds();
    void stopEndsTheThread_data();
    void stopEndsTheThread();
    void threadThatWasNeverStartedCanBeDestroyed();
    void destructionEndsEveryCallerOfNewTcpSocketClient();
    void sendStringSendsOneFrame();
    void sendStringToAClosedPeerRaisesNoSignal();
    void destructionEndsASendThatWaits();
    void newTcpSocketClientAndGethostIP();
};
