#include "link/ControlClientThread.h"

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
#include "tests/link/LinkRecorder.h"
#include "tests/link/ModuleScripts.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <memory>

#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMetaObject>
#include <QThread>
#include <QTimer>

using support::Peer;
using support::ScriptedServer;
using Script = ScriptedServer::Script;
using Scripts = std::vector<Script>;

namespace {

constexpr char address[] = "192.168.1.149";
constexpr quint16 port = 5000;
const int stopLimit = 500 * support::timeFactor(); // milliseconds

const QByteArray heartbeat = QByteArray::fromHex("aaaf0401005e");
const QByteArray answer = QByteArray::fromHex("aaaf0401015f");
const QByteArray versionReport = QByteArray::fromHex("aaaf000907012c02580064000a00");
const QByteArray unknownFrame = QByteArray::fromHex("aaaf7701000000");

/// The thread with its timer stopped, so that the test controls the ticks, and a recorder.
struct Link
{
    Link()
    {
        thread.findChild<QTimer*>()->stop();
        QObject::connect(&thread, SIGNAL(VersionInfo(char, int, int, int, int)), &recorder,
                                         SLOT(VersionInfo(char, int, int, int, int)));
        QObject::connect(&thread, SIGNAL(updateLinkedFlag(bool)), &recorder,
                                         SLOT(updateLinkedFlag(bool)));
    }
    void start() { thread.start(QThread::InheritPriority); }
    void tick(int times) { tickHeartBeats(thread, times); }

    support::LogCapture log;
    LinkRecorder recorder;
    ControlClientThread thread{nullptr};
    support::SleepWatch watch{thread};
};

} // namespace

class ControlClientThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void metaObjectHasTwoSignalsAndOneSlot();
    void newThreadKnowsTheModule();
    void constructionAndDestructionAreLogged();
    void timerTicksEachSecondEvenBeforeTheThreadStarts();
    void connectionIsLoggedInOrder();
    void versionReportIsPassedOn();
    void versionReportWithALowByteOf80OrMore();
    void everyHeartbeatIsAnsweredAndReported();
    void heartbeatIsAnsweredExactlyWhateverItsOtherBytes_data();
    void heartbeatIsAnsweredExactlyWhateverItsOtherBytes();
    void receiveStartingWithBBIsIgnored();
    void otherTypesAreIgnored();
    void frameSplitBetweenTwoReceivesIsNotRecognised();
    void secondFrameInAReceiveIsNotRecognised();
    void longSegmentIsReadInPiecesOfAHundred();
    void closedConnectionIsReportedAndReopenedImmediately();
    void resetConnectionIsReportedWithoutALogLine();
    void sixTicksAndAnotherReceiveEndTheConnection();
    void fiveTicksAndAnotherReceiveKeepIt();
    void sixTicksAndAHeartbeatKeepIt();
    void sixTicksWithoutAReceiveKeepIt();
    void countRestartsWithEachConnection();
    void oldSocketsStayOpenUntilTheObjectEnds();
    void moduleThatComesUpLaterIsFound();
    void stopEndsTheThread_data();
    void stopEndsTheThread();
    void threadThatWasNeverStartedCanBeDestroyed();
    void destructionEndsEveryCallerOfNewTcpSocketClient();
    void sendStringSendsOneFrame();
    void sendStringToAClosedPeerRaisesNoSignal();
    void destructionEndsASendThatWaits();
    void newTcpSocketClientAndGethostIP();
};

void ControlClientThreadTest::metaObjectHasTwoSignalsAndOneSlot()
{
    const QMetaObject& metaObject = ControlClientThread::staticMetaObject;
    QCOMPARE(metaObject.superClass(), &QThread::staticMetaObject);
    QCOMPARE(
        support::declaredMethods(metaObject),
        QStringList({"signal void VersionInfo(char hardType, int hardVer, int softVer, "
                     "int ProtocolVer, int BootVer)",
                     "signal void updateLinkedFlag(bool flag)", "slot void heartBeatTimer()"}));
}

void ControlClientThreadTest::newThreadKnowsTheModule()
{
    const Link link;
    QCOMPARE(QByteArray(link.thread.serverIP, sizeof link.thread.serverIP),
             QByteArray("192.168.1.149\0\0\0\0\0\0\0", 20));
    QCOMPARE(link.thread.serverPort, 5000);
    QCOMPARE(heartBeatsOf(link.thread), 0);
    QCOMPARE(link.thread.linkedFlag, false);
}

void ControlClientThreadTest::constructionAndDestructionAreLogged()
{
    const support::LogCapture log;
    {
        QObject parent;
        auto* thread = new ControlClientThread(&parent);
        QCOMPARE(thread->parent(), &parent);
        QCOMPARE(log.lines(), QStringList("ControlClientThread build"));
    }
    QCOMPARE(log.lines(), QStringList({"ControlClientThread build", "ControlClientThread ~"}));
}

void ControlClientThreadTest::timerTicksEachSecondEvenBeforeTheThreadStarts()
{
    const support::LogCapture log;
    ControlClientThread thread(nullptr);
    const auto timers = thread.findChildren<QTimer*>();
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.first()->interval(), 1000);
    QVERIFY(timers.first()->isActive());
    QCOMPARE(timers.first()->parent(), &thread);
    QCOMPARE(timers.first()->thread(), QThread::currentThread());
    QElapsedTimer time;
    time.start();
    QVERIFY(QTest::qWaitFor([&] { return heartBeatsOf(thread) == 1; }));
    QVERIFY2(time.elapsed() > 900, qPrintable(QString::number(time.elapsed()) + " ms"));
}

void ControlClientThreadTest::connectionIsLoggedInOrder()
{
    ScriptedServer server(Scripts{[](Peer& peer) { peer.close(); }, hold}, address, port);
    Link link;
    link.start();
    QVERIFY(link.log.waitFor("Control host IP: 192.168.1.149 length: 13", 2));
    QCOMPARE(link.log.lines(),
             QStringList({"ControlClientThread build", "ControlClientThread run begin",
                          "control new socket begin", "control new socket bind ok",
                          "control new socket success", "Control host IP: 192.168.1.149 length: 13",
                          "control nRead = 0", "ControlClientThread run exit",
                          "ControlClientThread run begin", "control new socket begin",
                          "control new socket bind ok", "control new socket success",
                          "Control host IP: 192.168.1.149 length: 13"}));
}

void ControlClientThreadTest::versionReportIsPassedOn()
{
    ScriptedServer server(sendAndHold(versionReport), address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QCOMPARE(link.recorder.events, QStringList("version 7 300 600 100 10"));
    QCOMPARE(server.received(0), QByteArray());
    QCOMPARE(link.thread.linkedFlag, false);
}

void ControlClientThreadTest::versionReportWithALowByteOf80OrMore()
{
    ScriptedServer server(sendAndHold(QByteArray::fromHex("aa0000ffff019000ff8000ffff")), address,
                          port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QCOMPARE(link.recorder.events, QStringList("version -1 144 -1 -32768 -257"));
}

void ControlClientThreadTest::everyHeartbeatIsAnsweredAndReported()
{
    const int others = support::threadsWithoutPipeSignal();
    ScriptedServer server(Script([](Peer& peer) {
                              for (int number = 0; number < 3; ++number) {
                                  peer.send(heartbeat);
                                  peer.receiveExactly(6);
                              }
                              peer.holdOpen();
                          }),
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(3));
    QTRY_COMPARE(support::threadsWithoutPipeSignal(), others + 1);
    QCOMPARE(link.recorder.events, QStringList({"linked", "linked", "linked"}));
    QCOMPARE(server.received(0).toHex(), QByteArray("aaaf0401015faaaf0401015faaaf0401015f"));
    QCOMPARE(link.thread.linkedFlag, true);
    QCOMPARE(server.errors(), QStringList());
}

void ControlClientThreadTest::heartbeatIsAnsweredExactlyWhateverItsOtherBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("three bytes") << QByteArray::fromHex("aa0004");
    QTest::newRow("other second byte and length") << QByteArray::fromHex("aa1204ff");
    QTest::newRow("all ff") << QByteArray::fromHex("aaff04ffffffffffff");
    QTest::newRow("wrong checksum") << QByteArray::fromHex("aaaf04010077");
    QTest::newRow("a hundred bytes") << QByteArray::fromHex("aaaf04") + QByteArray(97, 'x');
}

void ControlClientThreadTest::heartbeatIsAnsweredExactlyWhateverItsOtherBytes()
{
    QFETCH(QByteArray, bytes);
    ScriptedServer server(sendAndHold(bytes), address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QCOMPARE(link.recorder.events, QStringList("linked"));
    QVERIFY(server.waitForReceived(0, answer));
    QCOMPARE(server.received(0).toHex(), answer.toHex());
}

void ControlClientThreadTest::receiveStartingWithBBIsIgnored()
{
    ScriptedServer server(Script([](Peer& peer) {
                              peer.sendInPieces(QByteArray::fromHex("bbaf0401005e") +
                                                    QByteArray::fromHex("bbaf000907012c0258") +
                                                    heartbeat,
                                                {6, 15});
                              peer.receiveExactly(6);
                              peer.holdOpen();
                          }),
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QCOMPARE(link.recorder.events, QStringList("linked"));
    QVERIFY(server.waitForReceived(0, answer));
    QCOMPARE(server.received(0).toHex(), answer.toHex());
}

void ControlClientThreadTest::otherTypesAreIgnored()
{
    ScriptedServer server(Script([](Peer& peer) {
                              peer.sendInPieces(QByteArray::fromHex("aaaf0101005b") +
                                                    QByteArray::fromHex("aaaf84010000") +
                                                    versionReport,
                                                {6, 12});
                              peer.holdOpen();
                          }),
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QCOMPARE(link.recorder.events, QStringList("version 7 300 600 100 10"));
    QCOMPARE(server.received(0), QByteArray());
}

// The first piece ends before the type byte. The buffer contains zero there, the type of a version
// report.
void ControlClientThreadTest::frameSplitBetweenTwoReceivesIsNotRecognised()
{
    ScriptedServer server(Script([](Peer& peer) {
                              peer.sendInPieces(heartbeat + versionReport, {2, 6});
                              peer.holdOpen();
                          }),
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(2));
    QCOMPARE(link.recorder.events, QStringList({"version 0 0 0 0 0", "version 7 300 600 100 10"}));
    QCOMPARE(server.received(0), QByteArray());
}

void ControlClientThreadTest::secondFrameInAReceiveIsNotRecognised()
{
    ScriptedServer server(Script([](Peer& peer) {
                              peer.sendInPieces(versionReport + heartbeat + heartbeat +
                                                    versionReport + versionReport,
                                                {20, 40});
                              peer.holdOpen();
                          }),
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(3));
    QCOMPARE(link.recorder.events,
             QStringList({"version 7 300 600 100 10", "linked", "version 7 300 600 100 10"}));
    QVERIFY(server.waitForReceived(0, answer));
    QCOMPARE(server.received(0).toHex(), answer.toHex());
}

void ControlClientThreadTest::longSegmentIsReadInPiecesOfAHundred()
{
    const QByteArray filler = QByteArray(94, 'x');
    ScriptedServer server(sendAndHold(heartbeat + filler + heartbeat + filler + versionReport),
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(3));
    QCOMPARE(link.recorder.events, QStringList({"linked", "linked", "version 7 300 600 100 10"}));
}

void ControlClientThreadTest::closedConnectionIsReportedAndReopenedImmediately()
{
    std::atomic<bool> close{false};
    QElapsedTimer sinceClose;
    ScriptedServer server(Scripts{[&](Peer& peer) {
                                      peer.send(heartbeat);
                                      peer.receiveExactly(6);
                                      peer.waitUntil([&] { return close.load(); });
                                  },
                                  sendAndHold(heartbeat)},
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    sinceClose.start();
    close = true;
    QVERIFY(server.waitForConnections(2));
    QVERIFY2(sinceClose.elapsed() < stopLimit, qPrintable(QString::number(sinceClose.elapsed())));
    QVERIFY(link.recorder.waitFor(3));
    QCOMPARE(link.recorder.events, QStringList({"linked", "lost", "linked"}));
    QCOMPARE(link.log.count("control nRead = 0"), 1);
}

void ControlClientThreadTest::resetConnectionIsReportedWithoutALogLine()
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
    QVERIFY(link.recorder.waitFor(3));
    QCOMPARE(link.recorder.events, QStringList({"linked", "lost", "linked"}));
    QStringList lines = link.log.lines();
    QCOMPARE(lines.value(lines.indexOf("Control host IP: 192.168.1.149 length: 13") + 1),
             QString("ControlClientThread run exit"));
}

void ControlClientThreadTest::sixTicksAndAnotherReceiveEndTheConnection()
{
    std::atomic<bool> ticked{false};
    ScriptedServer server(Scripts{[&](Peer& peer) {
                                      peer.send(heartbeat);
                                      peer.waitUntil([&] { return ticked.load(); });
                                      peer.send(unknownFrame);
                                      peer.holdOpen();
                                  },
                                  hold},
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QVERIFY(link.watch.waitUntilAsleep());
    link.tick(6);
    QCOMPARE(heartBeatsOf(link.thread), 6);
    ticked = true;
    QVERIFY(link.log.waitFor("Control host IP: 192.168.1.149 length: 13", 2));
    QVERIFY(link.recorder.waitFor(2));
    QCOMPARE(link.recorder.events, QStringList({"linked", "lost"}));
    QCOMPARE(link.thread.linkedFlag, false);
    const QStringList lines = link.log.lines();
    QCOMPARE(lines.mid(lines.indexOf("Control host IP: 192.168.1.149 length: 13") + 1, 3),
             QStringList({"heartBeat is 6,break", "ControlClientThread run exit",
                          "ControlClientThread run begin"}));
    QTRY_COMPARE(heartBeatsOf(link.thread), 0);
}

void ControlClientThreadTest::fiveTicksAndAnotherReceiveKeepIt()
{
    std::atomic<bool> ticked{false};
    ScriptedServer server(Scripts{[&](Peer& peer) {
                              peer.send(heartbeat);
                              peer.waitUntil([&] { return ticked.load(); });
                              peer.send(unknownFrame);
                              peer.waitUntilRead();
                              peer.send(versionReport);
                              peer.holdOpen();
                          }},
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QVERIFY(link.watch.waitUntilAsleep());
    link.tick(5);
    ticked = true;
    QVERIFY(link.recorder.waitFor(2));
    QCOMPARE(link.recorder.events, QStringList({"linked", "version 7 300 600 100 10"}));
    QCOMPARE(heartBeatsOf(link.thread), 5);
}

void ControlClientThreadTest::sixTicksAndAHeartbeatKeepIt()
{
    std::atomic<bool> ticked{false};
    ScriptedServer server(Scripts{[&](Peer& peer) {
                              peer.send(heartbeat);
                              peer.waitUntil([&] { return ticked.load(); });
                              peer.sendInPieces(heartbeat + versionReport, {6});
                              peer.holdOpen();
                          }},
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QVERIFY(link.watch.waitUntilAsleep());
    link.tick(6);
    ticked = true;
    QVERIFY(link.recorder.waitFor(3));
    QCOMPARE(link.recorder.events, QStringList({"linked", "linked", "version 7 300 600 100 10"}));
    QCOMPARE(heartBeatsOf(link.thread), 0);
}

void ControlClientThreadTest::sixTicksWithoutAReceiveKeepIt()
{
    std::atomic<bool> close{false};
    ScriptedServer server(Scripts{[&](Peer& peer) {
                                      peer.send(heartbeat);
                                      peer.receiveExactly(6);
                                      peer.waitUntil([&] { return close.load(); });
                                  },
                                  hold},
                          address, port);
    Link link;
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QVERIFY(link.watch.waitUntilAsleep());
    link.tick(60);
    QVERIFY(link.watch.waitUntilAsleep());
    QCOMPARE(link.recorder.events, QStringList("linked"));
    close = true;
    QVERIFY(link.recorder.waitFor(2));
    QCOMPARE(link.log.count("control nRead = 0"), 1); // ended by the close, not the limit
}

void ControlClientThreadTest::countRestartsWithEachConnection()
{
    Link link;
    link.tick(10);
    ScriptedServer server(Scripts{[&](Peer& peer) {
                              peer.sendInPieces(unknownFrame + versionReport, {7});
                              peer.holdOpen();
                          }},
                          address, port);
    link.start();
    QVERIFY(link.recorder.waitFor(1));
    QCOMPARE(link.recorder.events, QStringList("version 7 300 600 100 10"));
    QCOMPARE(heartBeatsOf(link.thread), 0);
}

void ControlClientThreadTest::oldSocketsStayOpenUntilTheObjectEnds()
{
    const auto closeAndListen = [](Peer& peer) {
        peer.halfClose();
        peer.holdOpen();
    };
    ScriptedServer server(Scripts{closeAndListen, closeAndListen, closeAndListen, hold}, address,
                          port);
    {
        Link link;
        link.start();
        QVERIFY(link.log.waitFor("Control host IP: 192.168.1.149 length: 13", 4));
        QCOMPARE(support::socketsConnectedTo(address, port), 4);
    }
    QCOMPARE(support::socketsConnectedTo(address, port), 0);
}

void ControlClientThreadTest::moduleThatComesUpLaterIsFound()
{
    Link link;
    link.start();
    QVERIFY(link.log.waitFor("control new socket bind ok"));
    ScriptedServer server(sendAndHold(heartbeat), address, port);
    QVERIFY(link.recorder.waitFor(1));
    QCOMPARE(link.recorder.events, QStringList("linked"));
    QCOMPARE(link.log.count("control new socket begin"), 1);
}

void ControlClientThreadTest::stopEndsTheThread_data()
{
    QTest::addColumn<bool>("linkFirst");
    QTest::addColumn<QString>("then");
    QTest::newRow("connecting to a refusing address") << false << "refusing";
    QTest::newRow("connecting to a silent address") << false << "silent";
    QTest::newRow("idle on a connection") << false << "connected";
    QTest::newRow("linked") << true << "connected";
    QTest::newRow("reconnecting to a refusing address") << true << "refusing";
    QTest::newRow("reconnecting to a silent address") << true << "silent";
}

void ControlClientThreadTest::stopEndsTheThread()
{
    QFETCH(bool, linkFirst);
    QFETCH(QString, then);
    const bool connected = then == "connected";
    auto server = std::make_unique<ScriptedServer>(Script([&](Peer& peer) {
                                                       if (linkFirst) {
                                                           peer.send(heartbeat);
                                                       }
                                                       peer.holdOpen();
                                                   }),
                                                   address, port);
    std::unique_ptr<support::SilentAddress> silent;
    const auto goAway = [&] {
        server.reset();
        if (then == "silent") {
            silent = std::make_unique<support::SilentAddress>(address, port);
        }
    };
    Link link;
    if (!linkFirst && !connected) {
        goAway();
    }
    link.start();
    if (linkFirst) {
        QVERIFY(link.recorder.waitFor(1));
        if (!connected) {
            goAway();
            QVERIFY(link.log.waitFor("control new socket bind ok", 2));
        }
    } else {
        QVERIFY(link.log.waitFor(connected ? "Control host IP: 192.168.1.149 length: 13"
                                           : "control new socket bind ok"));
    }
    if (then != "refusing") {
        QVERIFY(link.watch.waitUntilAsleep());
    }
    QCoreApplication::processEvents();
    const QStringList lines = link.log.lines();
    const QStringList events = link.recorder.events;
    QElapsedTimer time;
    time.start();
    link.thread.stopAndWait();
    QVERIFY2(time.elapsed() < stopLimit, qPrintable(QString::number(time.elapsed()) + " ms"));
    QVERIFY(link.thread.isFinished());
    QCoreApplication::processEvents();
    QCOMPARE(link.log.lines(), lines);      // the stop itself logs nothing
    QCOMPARE(link.recorder.events, events); // and emits no signal
}

void ControlClientThreadTest::threadThatWasNeverStartedCanBeDestroyed()
{
    QElapsedTimer time;
    time.start();
    {
        const Link link;
    }
    QVERIFY2(time.elapsed() < stopLimit, qPrintable(QString::number(time.elapsed()) + " ms"));
}

// run() waits for the module, and two other threads connect to an address that does not answer.
void ControlClientThreadTest::destructionEndsEveryCallerOfNewTcpSocketClient()
{
    ScriptedServer server(Script(hold), address, port);
    const support::SilentAddress silent("127.0.0.1", 0);
    auto link = std::make_unique<Link>();
    ControlClientThread& thread = link->thread;
    std::vector<std::unique_ptr<QThread>> callers;
    std::atomic<int> left{0};
    link->start();
    QVERIFY(link->log.waitFor("Control host IP: 192.168.1.149 length: 13"));
    for (int number = 0; number < 2; ++number) {
        callers.emplace_back(QThread::create([&] {
            const int descriptor = thread.newTcpSocketClient("127.0.0.1", silent.port());
            ++left;
            ::close(descriptor);
        }));
        const support::SleepWatch watch(*callers.back());
        callers.back()->start();
        QVERIFY(link->log.waitFor("control new socket bind ok", 2 + number));
        QVERIFY(watch.waitUntilAsleep());
    }
    QElapsedTimer time;
    time.start();
    link.reset();
    const qint64 elapsed = time.elapsed();
    for (const auto& caller : callers) {
        QVERIFY(caller->wait(5000));
    }
    QVERIFY2(elapsed < stopLimit, qPrintable(QString::number(elapsed) + " ms"));
    QCOMPARE(left.load(), 2);
}

void ControlClientThreadTest::sendStringSendsOneFrame()
{
    Link link;
    const support::SocketPair pair;
    link.thread.sendString(pair.product, 0x04, 0x01);
    QCOMPARE(pair.arrived().toHex(), QByteArray("aaaf0401015f"));
    link.thread.sendString(pair.product, 0x10, static_cast<char>(0xFE));
    QCOMPARE(pair.arrived().toHex(), QByteArray("aaaf1001fe68"));
}

void ControlClientThreadTest::sendStringToAClosedPeerRaisesNoSignal()
{
    Link link;
    support::SocketPair pair;
    pair.closeTest();
    const auto before = std::signal(SIGPIPE, SIG_DFL);
    link.thread.sendString(pair.product, 0x04, 0x01);
    std::signal(SIGPIPE, before);
}

void ControlClientThreadTest::destructionEndsASendThatWaits()
{
    const support::SocketPair pair;
    const QByteArray filling(4096, 'x');
    while (::send(pair.product, filling.constData(), static_cast<std::size_t>(filling.size()),
                  MSG_DONTWAIT) > 0) {
    }
    std::unique_ptr<QThread> sender;
    {
        Link link;
        sender.reset(QThread::create([&] { link.thread.sendString(pair.product, 0x04, 0x01); }));
        const support::SleepWatch watch(*sender);
        sender->start();
        QVERIFY(watch.waitUntilAsleep());
    }
    QVERIFY(sender->wait(stopLimit));
}

void ControlClientThreadTest::newTcpSocketClientAndGethostIP()
{
    ScriptedServer server(Script([](Peer& peer) { peer.waitUntilClosedByClient(); }), address,
                          port);
    Link link;
    const int descriptor = link.thread.newTcpSocketClient(address, port);
    char ip[16];
    std::fill(std::begin(ip), std::end(ip), 'x');
    QCOMPARE(link.thread.gethostIP(descriptor, ip), 13);
    ::close(descriptor);
    QCOMPARE(QByteArray(ip, sizeof ip), QByteArray("192.168.1.149\0xx", 16));
    QCOMPARE(link.log.lines().mid(1),
             QStringList({"control new socket begin", "control new socket bind ok",
                          "control new socket success"}));
    QVERIFY(server.waitForScripts(1));
}

BELUN_NETWORK_TEST(ControlClientThreadTest)
#include "ControlClientThreadTest.moc"
