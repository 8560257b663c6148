#include "tests/link/LinkThreadTest.h"

#include "tests/kit/LogCapture.h"
#include "tests/kit/MetaMethods.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/PipeSignal.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/SocketPair.h"
#include "tests/link/Link.h"
#include "tests/link/LinkConversations.h"
#include "tests/link/LinkPlay.h"

#include <atomic>
#include <memory>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QTest>
#include <QThread>
#include <QTimer>

using support::Conversation;
using support::Exchange;
using support::Peer;
using support::ScriptedServer;

namespace {

void hold(Peer& peer)
{
    peer.holdOpen();
}

/// Returns the time that a call takes, in milliseconds.
template <class Call>
qint64 durationOf(const Call& call)
{
    QElapsedTimer time;
    time.start();
    call();
    return time.elapsed();
}

} // namespace

// --- the object --------------------------------------------------------------------------------

void LinkThreadTest::metaObjectHasTheSignalsAndSlots()
{
    const Link link(m_module);
    const QMetaObject& metaObject = *link.thread->metaObject();
    QCOMPARE(metaObject.superClass(), &QThread::staticMetaObject);
    QCOMPARE(support::declaredMethods(metaObject), m_module.methods);
}

void LinkThreadTest::newThreadKnowsTheModule()
{
    const Link link(m_module);
    const auto& serverIP = link.thread->serverIP;
    QCOMPARE(QByteArray(serverIP, sizeof serverIP), m_module.address + QByteArray(7, '\0'));
    QCOMPARE(link.thread->serverPort, 5000);
    QCOMPARE(heartBeatsOf(*link.thread), 0);
}

void LinkThreadTest::constructionAndDestructionAreLogged()
{
    support::LogCapture log;
    QObject parent;
    auto thread = m_module.newThread(&parent);
    QCOMPARE(thread->parent(), &parent);
    QCOMPARE(log.lines(), QStringList(m_module.threadName + " build"));
    log.clear();
    thread.reset();
    QCOMPARE(log.lines(), QStringList(m_module.threadName + " ~"));
}

void LinkThreadTest::timerTicksEachSecondEvenBeforeTheThreadStarts()
{
    const support::LogCapture log;
    QElapsedTimer clock;
    clock.start();
    const auto thread = m_module.newThread(nullptr);
    const auto timers = thread->findChildren<QTimer*>();
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.first()->interval(), 1000);
    QVERIFY(timers.first()->isActive());
    QCOMPARE(timers.first()->parent(), thread.get());
    QCOMPARE(timers.first()->thread(), QThread::currentThread());
    QVERIFY(QTest::qWaitFor([&] { return heartBeatsOf(*thread) >= 1; }));
    const qint64 time = clock.elapsed();
    QVERIFY2(time > 900, qPrintable(QString::number(time) + " ms"));
}

// --- the connection ----------------------------------------------------------------------------

void LinkThreadTest::conversationHappensAsWritten_data()
{
    addConversations(m_module.name);
}

void LinkThreadTest::conversationHappensAsWritten()
{
    QFETCH(Conversation, conversation);
    LinkPlay play(m_module);
    for (const Exchange& exchange : conversation.exchanges) {
        QCOMPARE(play.happensIn(exchange), QString::fromStdString(exchange.result));
    }
    QCOMPARE(play.happensAfterwards(), QString("nothing"));
}

void LinkThreadTest::linkThreadBlocksThePipeSignal()
{
    // The link thread of an earlier test may still be ending.
    const auto others = support::threadsThatBlockPipeSignal();
    ScriptedServer server(hold, m_module.address, modulePort);
    Link link(m_module);
    link.start();
    QVERIFY(link.waitUntilConnected());
    QTRY_COMPARE(int((support::threadsThatBlockPipeSignal() - others).size()), 1);
}

void LinkThreadTest::closedConnectionIsReopenedImmediately()
{
    ScriptedServer server([](Peer& peer) { peer.serve(); }, m_module.address, modulePort);
    Link link(m_module);
    link.start();
    QVERIFY(link.waitUntilConnected());
    QVERIFY(server.waitForConnections(1));
    server.peer(0).wantClose();
    const qint64 time = durationOf([&] { QVERIFY(server.waitForConnections(2)); });
    QVERIFY2(time < stopLimit, qPrintable(QString::number(time) + " ms"));
}

void LinkThreadTest::oldSocketsStayOpenUntilTheObjectEnds()
{
    const auto closeAndListen = [](Peer& peer) {
        peer.halfClose();
        peer.holdOpen();
    };
    ScriptedServer server({closeAndListen, closeAndListen, closeAndListen, hold}, m_module.address,
                          modulePort);
    {
        Link link(m_module);
        link.start();
        QVERIFY(link.waitUntilConnected(4));
        QCOMPARE(support::socketsConnectedTo(m_module.address, modulePort), 4);
    }
    QCOMPARE(support::socketsConnectedTo(m_module.address, modulePort), 0);
}

// --- stopping ----------------------------------------------------------------------------------

void LinkThreadTest::stopEndsTheThread_data()
{
    QTest::addColumn<bool>("connectFirst");
    QTest::addColumn<QString>("then");
    QTest::newRow("connecting to a refusing address") << false << "refusing";
    QTest::newRow("connecting to a silent address") << false << "silent";
    QTest::newRow("connected") << true << "connected";
    QTest::newRow("reconnecting to a refusing address") << true << "refusing";
    QTest::newRow("reconnecting to a silent address") << true << "silent";
}

void LinkThreadTest::stopEndsTheThread()
{
    QFETCH(bool, connectFirst);
    QFETCH(QString, then);
    std::unique_ptr<ScriptedServer> server;
    std::unique_ptr<support::SilentAddress> silent;
    Link link(m_module);
    if (connectFirst) {
        server = std::make_unique<ScriptedServer>(hold, m_module.address, modulePort);
        link.start();
        QVERIFY(link.waitUntilConnected());
    }
    if (then != "connected") {
        server.reset();
    }
    if (then == "silent") {
        silent = std::make_unique<support::SilentAddress>(m_module.address, modulePort);
    }
    if (!connectFirst) {
        link.start();
    }
    QVERIFY(link.waitUntilConnecting(connectFirst && then != "connected" ? 2 : 1));
    if (then != "refusing") {
        QVERIFY(link.watch.waitUntilAsleep());
    }
    const QStringList lines = link.log.lines();
    const QStringList signalTexts = link.recorder.signalTexts();
    const qint64 time = durationOf([&] { link.thread->stopAndWait(); });
    QVERIFY2(time < stopLimit, qPrintable(QString::number(time) + " ms"));
    QVERIFY(link.thread->isFinished());
    QCOMPARE(link.log.lines(), lines);
    QCOMPARE(link.recorder.signalTexts(), signalTexts);
}

void LinkThreadTest::threadThatWasNeverStartedCanBeDestroyed()
{
    auto link = std::make_unique<Link>(m_module);
    const qint64 time = durationOf([&] { link.reset(); });
    QVERIFY2(time < stopLimit, qPrintable(QString::number(time) + " ms"));
}

// run() waits for the module, and two other threads connect to an address that does not answer.
void LinkThreadTest::destructionEndsEveryCallerOfNewTcpSocketClient()
{
    ScriptedServer server(hold, m_module.address, modulePort);
    const support::SilentAddress silent("127.0.0.1", 0);
    auto link = std::make_unique<Link>(m_module);
    ModuleClientThread& thread = *link->thread;
    std::vector<std::unique_ptr<QThread>> callers;
    std::atomic<int> left{0};
    link->start();
    QVERIFY(link->waitUntilConnected());
    for (int number = 0; number < 2; ++number) {
        callers.emplace_back(QThread::create([&] {
            const int descriptor = thread.newTcpSocketClient("127.0.0.1", silent.port());
            ++left;
            ::close(descriptor);
        }));
        const support::SleepWatch watch(*callers.back());
        callers.back()->start();
        QVERIFY(link->waitUntilConnecting(2 + number));
        QVERIFY(watch.waitUntilAsleep());
    }
    const qint64 time = durationOf([&] { link.reset(); });
    for (const auto& caller : callers) {
        QVERIFY(caller->wait(5000));
    }
    QVERIFY2(time < stopLimit, qPrintable(QString::number(time) + " ms"));
    QCOMPARE(left.load(), 2);
}

// --- operations in the caller's thread ---------------------------------------------------------

void LinkThreadTest::sendStringSendsOneFrame()
{
    const Link link(m_module);
    const support::SocketPair pair;
    link.thread->sendString(pair.product, 0x04, 0x01);
    QCOMPARE(pair.arrived().toHex(), QByteArray("aaaf0401015f"));
    link.thread->sendString(pair.product, 0x10, static_cast<char>(0xFE));
    QCOMPARE(pair.arrived().toHex(), QByteArray("aaaf1001fe68"));
}

void LinkThreadTest::sendStringToAClosedPeerRaisesNoSignal()
{
    const Link link(m_module);
    const support::DeadlyPipeSignal deadly;
    support::SocketPair pair;
    pair.closeTest();
    link.thread->sendString(pair.product, 0x04, 0x01);
}

void LinkThreadTest::destructionEndsASendThatWaits()
{
    const support::SocketPair pair;
    const QByteArray filling(4096, 'x');
    while (::send(pair.product, filling.constData(), static_cast<std::size_t>(filling.size()),
                  MSG_DONTWAIT) > 0) {
    }
    std::unique_ptr<QThread> sender;
    {
        const Link link(m_module);
        sender.reset(QThread::create([&] { link.thread->sendString(pair.product, 0x04, 0x01); }));
        const support::SleepWatch watch(*sender);
        sender->start();
        QVERIFY(watch.waitUntilAsleep());
    }
    QVERIFY(sender->wait(static_cast<unsigned long>(stopLimit)));
}

void LinkThreadTest::newTcpSocketClientAndGethostIP()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); }, m_module.address,
                          modulePort);
    const Link link(m_module);
    const int descriptor = link.thread->newTcpSocketClient(m_module.address, modulePort);
    QByteArray ip(16, 'x');
    QCOMPARE(link.thread->gethostIP(descriptor, ip.data()), 13);
    ::close(descriptor);
    QCOMPARE(ip, m_module.address + QByteArray("\0xx", 3));
    QCOMPARE(link.log.lines().mid(1), m_module.connecting.mid(1, 3));
    QVERIFY(server.waitForScripts(1));
}
