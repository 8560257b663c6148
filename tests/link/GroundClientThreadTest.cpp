#include "link/GroundClientThread.h"

#include "tests/kit/LogCapture.h"
#include "tests/kit/MetaMethods.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/PipeSignal.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/SocketPair.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"
#include "tests/link/HeartBeats.h"
#include "tests/link/ModuleScripts.h"

#include <algorithm>
#include <atomic>
#include <memory>

#include <unistd.h>

#include <QElapsedTimer>
#include <QMetaObject>
#include <QThread>
#include <QTimer>

using support::Peer;
using support::ScriptedServer;
using Script = ScriptedServer::Script;
using Scripts = std::vector<Script>;

namespace {

constexpr char address[] = "192.168.1.148";
constexpr quint16 port = 5000;
const int stopLimit = 500 * support::timeFactor(); // milliseconds

const QByteArray heartbeat = QByteArray::fromHex("bbaf0401005e");
const QByteArray answer = QByteArray::fromHex("aaaf0401015f");
const QByteArray unknownFrame = QByteArray::fromHex("bbaf7701000000");
const QString hostLine = QStringLiteral("Ground host IP: 192.168.1.148 length: 13");

/// The thread with its timer stopped, so that the test controls the ticks.
struct Link
{
    Link() { thread.findChild<QTimer*>()->stop(); }
    void start() { thread.start(QThread::InheritPriority); }
    void tick(int times) { tickHeartBeats(thread, times); }

    support::LogCapture log;
    GroundClientThread thread{nullptr};
    support::SleepWatch watch{thread};
};

} // namespace

class GroundClientThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void metaObjectHasTwoSlotsAndNoSignal();
    void newThreadKnowsTheModule();
    void constructionAndDestructionAreLogged();
    void timerTicksEachSecondEvenBeforeTheThreadStarts();
    void connectionIsLoggedInOrderAndItsEndSilently();
    void everyHeartbeatIsAnsweredWithTheControlStartByte();
    void heartbeatOfTheControlModuleIsNotAnswered();
    void versionReportIsIgnored();
    void frameSplitBetweenTwoReceivesIsNotRecognised();
    void resetConnectionIsReopened();
    void sixTicksAndAnotherReceiveReconnectSilently();
    void fiveTicksAndAnotherReceiveKeepTheConnection();
    void sixTicksAndAHeartbeatKeepTheConnection();
    void countRestartsWithEachConnection();
    void oldSocketsStayOpenUntilTheObjectEnds();
    void moduleThatComesUpLaterIsFound();
    void stopEndsTheThread_data();
    void stopEndsTheThread();
    void sendStringSendsOneFrame();
    void newTcpSocketClientAndGethostIP();
    void moduleNameInitDoesNothing();
};

void GroundClientThreadTest::metaObjectHasTwoSlotsAndNoSignal()
{
    const QMetaObject& metaObject = GroundClientThread::staticMetaObject;
    QCOMPARE(metaObject.superClass(), &QThread::staticMetaObject);
    QCOMPARE(
        support::declaredMethods(metaObject),
        QStringList({"slot void ModuleNameInit(char* modulename)", "slot void heartBeatTimer()"}));
}

void GroundClientThreadTest::newThreadKnowsTheModule()
{
    const Link link;
    QCOMPARE(QByteArray(link.thread.serverIP, sizeof link.thread.serverIP),
             QByteArray("192.168.1.148\0\0\0\0\0\0\0", 20));
    QCOMPARE(link.thread.serverPort, 5000);
    QCOMPARE(heartBeatsOf(link.thread), 0);
}

void GroundClientThreadTest::constructionAndDestructionAreLogged()
{
    const support::LogCapture log;
    {
        QObject parent;
        auto* thread = new GroundClientThread(&parent);
        QCOMPARE(thread->parent(), &parent);
        QCOMPARE(log.lines(), QStringList("GroundClientThread build"));
    }
    QCOMPARE(log.lines(), QStringList({"GroundClientThread build", "GroundClientThread ~"}));
}

void GroundClientThreadTest::timerTicksEachSecondEvenBeforeTheThreadStarts()
{
    const support::LogCapture log;
    GroundClientThread thread(nullptr);
    const auto timers = thread.findChildren<QTimer*>();
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.first()->interval(), 1000);
    QVERIFY(timers.first()->isActive());
    QCOMPARE(timers.first()->thread(), QThread::currentThread());
    QElapsedTimer time;
    time.start();
    QVERIFY(QTest::qWaitFor([&] { return heartBeatsOf(thread) == 1; }));
    QVERIFY2(time.elapsed() > 900, qPrintable(QString::number(time.elapsed()) + " ms"));
}

void GroundClientThreadTest::connectionIsLoggedInOrderAndItsEndSilently()
{
    ScriptedServer server(Scripts{[](Peer& peer) { peer.close(); }, hold}, address, port);
    Link link;
    link.start();
    QVERIFY(link.log.waitFor(hostLine, 2));
    QCOMPARE(
        link.log.lines(),
        QStringList({"GroundClientThread build", "GroundClientThread run begin",
                     "ground new socket begin", "ground new socket bind ok",
                     "ground new socket success", "Ground host IP: 192.168.1.148 length: 13",
                     "GroundClientThread run exit", "GroundClientThread run begin",
                     "ground new socket begin", "ground new socket bind ok",
                     "ground new socket success", "Ground host IP: 192.168.1.148 length: 13"}));
}

void GroundClientThreadTest::everyHeartbeatIsAnsweredWithTheControlStartByte()
{
    const int others = support::threadsWithoutPipeSignal();
    ScriptedServer server(Script([](Peer& peer) {
                              peer.send(heartbeat);
                              peer.receiveExactly(6);
                              peer.send(QByteArray::fromHex("bb0004"));
                              peer.receiveExactly(6);
                              peer.send(QByteArray::fromHex("bbff04ffffffffff"));
                              peer.holdOpen();
                          }),
                          address, port);
    Link link;
    link.start();
    QVERIFY(server.waitForReceived(0, answer + answer + answer));
    QTRY_COMPARE(support::threadsWithoutPipeSignal(), others + 1);
    QCOMPARE(server.received(0).toHex(), QByteArray("aaaf0401015faaaf0401015faaaf0401015f"));
    QCOMPARE(server.errors(), QStringList());
}

void GroundClientThreadTest::heartbeatOfTheControlModuleIsNotAnswered()
{
    ScriptedServer server(Script([](Peer& peer) {
                              peer.sendInPieces(QByteArray::fromHex("aaaf0401005e") + heartbeat,
                                                {6});
                              peer.holdOpen();
                          }),
                          address, port);
    Link link;
    link.start();
    QVERIFY(server.waitForReceived(0, answer));
    QCOMPARE(server.received(0).toHex(), answer.toHex());
}

void GroundClientThreadTest::versionReportIsIgnored()
{
    ScriptedServer server(
        Script([](Peer& peer) {
            peer.sendInPieces(QByteArray::fromHex("aaaf000907012c02580064000a00") +
                                  QByteArray::fromHex("bbaf000907012c02580064000a00") + heartbeat,
                              {14, 28});
            peer.holdOpen();
        }),
        address, port);
    Link link;
    link.start();
    QVERIFY(server.waitForReceived(0, answer));
    QCOMPARE(server.received(0).toHex(), answer.toHex());
    QCOMPARE(link.log.lines().last(), hostLine);
}

void GroundClientThreadTest::frameSplitBetweenTwoReceivesIsNotRecognised()
{
    ScriptedServer server(Script([](Peer& peer) {
                              peer.sendInPieces(heartbeat + unknownFrame + heartbeat, {2, 6});
                              peer.sendInPieces(heartbeat, {});
                              peer.holdOpen();
                          }),
                          address, port);
    Link link;
    link.start();
    QVERIFY(server.waitForReceived(0, answer));
    QCOMPARE(server.received(0).toHex(), answer.toHex());
}

void GroundClientThreadTest::resetConnectionIsReopened()
{
    ScriptedServer server(Scripts{[](Peer& peer) {
                                      peer.send(heartbeat);
                                      peer.receiveExactly(6);
                                      peer.reset();
                                  },
                                  sendAndHold(heartbeat)},
                          address, port);
    Link link;
    link.start();
    QVERIFY(server.waitForReceived(1, answer));
}

void GroundClientThreadTest::sixTicksAndAnotherReceiveReconnectSilently()
{
    std::atomic<bool> ticked{false};
    ScriptedServer server(Scripts{[&](Peer& peer) {
                                      peer.waitUntil([&] { return ticked.load(); });
                                      peer.send(unknownFrame);
                                      peer.holdOpen();
                                  },
                                  hold},
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.log.waitFor(hostLine));
    QVERIFY(link.watch.waitUntilAsleep());
    link.tick(6);
    ticked = true;
    QVERIFY(link.log.waitFor(hostLine, 2));
    const QStringList lines = link.log.lines();
    QCOMPARE(lines.mid(lines.indexOf(hostLine) + 1, 3),
             QStringList({"GroundClientThread run exit", "GroundClientThread run begin",
                          "ground new socket begin"}));
    QTRY_COMPARE(heartBeatsOf(link.thread), 0);
}

void GroundClientThreadTest::fiveTicksAndAnotherReceiveKeepTheConnection()
{
    std::atomic<bool> ticked{false};
    ScriptedServer server(Scripts{[&](Peer& peer) {
                              peer.send(heartbeat);
                              peer.receiveExactly(6);
                              peer.waitUntil([&] { return ticked.load(); });
                              peer.sendInPieces(unknownFrame + heartbeat, {7});
                              peer.holdOpen();
                          }},
                          address, port);
    Link link;
    link.start();
    QVERIFY(server.waitForReceived(0, answer));
    QVERIFY(link.watch.waitUntilAsleep());
    link.tick(5);
    ticked = true;
    QVERIFY(server.waitForReceived(0, answer + answer));
    QCOMPARE(server.connectionCount(), 1);
}

void GroundClientThreadTest::sixTicksAndAHeartbeatKeepTheConnection()
{
    std::atomic<bool> ticked{false};
    ScriptedServer server(Scripts{[&](Peer& peer) {
                              peer.send(heartbeat);
                              peer.receiveExactly(6);
                              peer.waitUntil([&] { return ticked.load(); });
                              peer.sendInPieces(heartbeat + unknownFrame + heartbeat, {6, 13});
                              peer.holdOpen();
                          }},
                          address, port);
    Link link;
    link.start();
    QVERIFY(server.waitForReceived(0, answer));
    QVERIFY(link.watch.waitUntilAsleep());
    link.tick(6);
    ticked = true;
    QVERIFY(server.waitForReceived(0, answer + answer + answer));
    QCOMPARE(server.connectionCount(), 1);
    QCOMPARE(heartBeatsOf(link.thread), 0);
}

void GroundClientThreadTest::countRestartsWithEachConnection()
{
    Link link;
    link.tick(10);
    ScriptedServer server(Scripts{[&](Peer& peer) {
                              peer.sendInPieces(unknownFrame + heartbeat, {7});
                              peer.holdOpen();
                          }},
                          address, port);
    link.start();
    QVERIFY(server.waitForReceived(0, answer));
    QCOMPARE(server.connectionCount(), 1);
}

void GroundClientThreadTest::oldSocketsStayOpenUntilTheObjectEnds()
{
    const auto closeAndListen = [](Peer& peer) {
        peer.halfClose();
        peer.holdOpen();
    };
    ScriptedServer server(Scripts{closeAndListen, closeAndListen, hold}, address, port);
    {
        Link link;
        link.start();
        QVERIFY(link.log.waitFor(hostLine, 3));
        QCOMPARE(support::socketsConnectedTo(address, port), 3);
    }
    QCOMPARE(support::socketsConnectedTo(address, port), 0);
}

void GroundClientThreadTest::moduleThatComesUpLaterIsFound()
{
    Link link;
    link.start();
    QVERIFY(link.log.waitFor("ground new socket bind ok"));
    ScriptedServer server(sendAndHold(heartbeat), address, port);
    QVERIFY(server.waitForReceived(0, answer));
    QCOMPARE(link.log.count("ground new socket begin"), 1);
}

void GroundClientThreadTest::stopEndsTheThread_data()
{
    QTest::addColumn<bool>("linkFirst");
    QTest::addColumn<QString>("then");
    QTest::newRow("connecting to a refusing address") << false << "refusing";
    QTest::newRow("connecting to a silent address") << false << "silent";
    QTest::newRow("linked") << true << "connected";
    QTest::newRow("reconnecting to a refusing address") << true << "refusing";
    QTest::newRow("reconnecting to a silent address") << true << "silent";
}

void GroundClientThreadTest::stopEndsTheThread()
{
    QFETCH(bool, linkFirst);
    QFETCH(QString, then);
    auto server = std::make_unique<ScriptedServer>(sendAndHold(heartbeat), address, port);
    std::unique_ptr<support::SilentAddress> silent;
    const auto goAway = [&] {
        server.reset();
        if (then == "silent") {
            silent = std::make_unique<support::SilentAddress>(address, port);
        }
    };
    Link link;
    if (!linkFirst) {
        goAway();
    }
    link.start();
    if (linkFirst) {
        QVERIFY(server->waitForReceived(0, answer));
        if (then != "connected") {
            goAway();
            QVERIFY(link.log.waitFor("ground new socket bind ok", 2));
        }
    } else {
        QVERIFY(link.log.waitFor("ground new socket bind ok"));
    }
    if (then != "refusing") {
        QVERIFY(link.watch.waitUntilAsleep());
    }
    QElapsedTimer time;
    time.start();
    link.thread.stopAndWait();
    QVERIFY2(time.elapsed() < stopLimit, qPrintable(QString::number(time.elapsed()) + " ms"));
    QVERIFY(link.thread.isFinished());
}

void GroundClientThreadTest::sendStringSendsOneFrame()
{
    Link link;
    const support::SocketPair pair;
    link.thread.sendString(pair.product, 0x04, 0x01);
    QCOMPARE(pair.arrived().toHex(), QByteArray("aaaf0401015f"));
}

void GroundClientThreadTest::newTcpSocketClientAndGethostIP()
{
    ScriptedServer server(Script([](Peer& peer) { peer.waitUntilClosedByClient(); }), address,
                          port);
    Link link;
    const int descriptor = link.thread.newTcpSocketClient(address, port);
    char ip[16];
    std::fill(std::begin(ip), std::end(ip), 'x');
    QCOMPARE(link.thread.gethostIP(descriptor, ip), 13);
    ::close(descriptor);
    QCOMPARE(QByteArray(ip, sizeof ip), QByteArray("192.168.1.148\0xx", 16));
    QVERIFY(server.waitForScripts(1));
}

void GroundClientThreadTest::moduleNameInitDoesNothing()
{
    Link link;
    const QStringList before = link.log.lines();
    char name[] = "name";
    QVERIFY(QMetaObject::invokeMethod(&link.thread, "ModuleNameInit", Qt::DirectConnection,
                                      Q_ARG(char*, name)));
    QCOMPARE(QByteArray(name), QByteArray("name"));
    QCOMPARE(link.log.lines(), before);
    QCOMPARE(QByteArray(link.thread.serverIP), QByteArray("192.168.1.148"));
}

BELUN_NETWORK_TEST(GroundClientThreadTest)
#include "GroundClientThreadTest.moc"
