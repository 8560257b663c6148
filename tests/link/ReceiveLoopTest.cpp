#include "link/ReceiveLoop.h"

#include "tests/kit/SocketPair.h"
#include "tests/kit/TestMain.h"

#include <atomic>
#include <csignal>
#include <thread>

#include <pthread.h>

#include <QByteArray>
#include <QList>

using support::SocketPair;
using vehicle::EndReason;

namespace {

QByteArray bytesOf(const vehicle::Received& received)
{
    return QByteArray(reinterpret_cast<const char*>(received.data()),
                      static_cast<int>(received.size()));
}

/// Returns the bytes, padded with zeros to a hundred.
QByteArray filledUp(const QByteArray& bytes)
{
    return bytes + QByteArray(100 - bytes.size(), '\0');
}

/// While this object exists, SIGUSR1 interrupts system calls instead of ending the process.
class InterruptingSignal
{
public:
    InterruptingSignal()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGUSR1, &action, &m_before);
    }
    ~InterruptingSignal() { ::sigaction(SIGUSR1, &m_before, nullptr); }
    InterruptingSignal(const InterruptingSignal&) = delete;
    InterruptingSignal& operator=(const InterruptingSignal&) = delete;

private:
    struct sigaction m_before = {};
};

} // namespace

class ReceiveLoopTest : public QObject
{
    Q_OBJECT

private slots:
    void everyReceiveIsHandledSeparately();
    void bufferIsZeroAfterTheReceivedBytes();
    void longTextComesInPiecesOfAHundred();
    void closedConnectionEndsTheLoop();
    void receiveErrorEndsTheLoop();
    void limitIsSixTicks_data();
    void limitIsSixTicks();
    void handlerThatSetsTheCountBackKeepsTheConnection();
    void silentModuleIsNotLost();
    void interruptedReceiveGoesOn();
    void interruptedReceiveChecksTheLimit();
};

void ReceiveLoopTest::everyReceiveIsHandledSeparately()
{
    SocketPair pair;
    QList<QByteArray> next{"second", "third"};
    QList<QByteArray> seen;
    int count = 0;
    QVERIFY(pair.send("first"));
    const auto end =
        vehicle::receiveUntilEnd(pair.product, count, [&](const vehicle::Received& received) {
            seen.append(bytesOf(received));
            if (next.isEmpty()) {
                pair.closeTest();
            } else {
                pair.send(next.takeFirst());
            }
        });
    QCOMPARE(seen, QList<QByteArray>({filledUp("first"), filledUp("second"), filledUp("third")}));
    QVERIFY(end.reason == EndReason::ClosedByModule);
}

void ReceiveLoopTest::bufferIsZeroAfterTheReceivedBytes()
{
    SocketPair pair;
    QList<QByteArray> seen;
    int count = 0;
    QVERIFY(pair.send(QByteArray(100, 'x')));
    vehicle::receiveUntilEnd(pair.product, count, [&](const vehicle::Received& received) {
        seen.append(bytesOf(received));
        if (seen.size() == 1) {
            pair.send("ab");
            pair.closeTest();
        }
    });
    QCOMPARE(seen, QList<QByteArray>({QByteArray(100, 'x'), filledUp("ab")}));
}

void ReceiveLoopTest::longTextComesInPiecesOfAHundred()
{
    SocketPair pair;
    QList<QByteArray> seen;
    int count = 0;
    QVERIFY(pair.send(QByteArray(100, 'a') + QByteArray(100, 'b') + "c"));
    pair.closeTest();
    vehicle::receiveUntilEnd(pair.product, count, [&](const vehicle::Received& received) {
        seen.append(bytesOf(received));
    });
    QCOMPARE(seen, QList<QByteArray>({QByteArray(100, 'a'), QByteArray(100, 'b'), filledUp("c")}));
}

void ReceiveLoopTest::closedConnectionEndsTheLoop()
{
    SocketPair pair;
    pair.closeTest();
    int count = 3;
    int handled = 0;
    const auto end =
        vehicle::receiveUntilEnd(pair.product, count, [&](const vehicle::Received&) { ++handled; });
    QVERIFY(end.reason == EndReason::ClosedByModule);
    QCOMPARE(end.missedTicks, 0);
    QCOMPARE(count, 3);
    QCOMPARE(handled, 0);
}

void ReceiveLoopTest::receiveErrorEndsTheLoop()
{
    SocketPair pair;
    QCOMPARE(::send(pair.product, "x", 1, MSG_NOSIGNAL), ssize_t{1});
    pair.closeTest(); // an unread byte makes this a reset
    int count = 0;
    int handled = 0;
    const auto end =
        vehicle::receiveUntilEnd(pair.product, count, [&](const vehicle::Received&) { ++handled; });
    QVERIFY(end.reason == EndReason::ReceiveError);
    QCOMPARE(end.missedTicks, 0);
    QCOMPARE(handled, 0);
}

void ReceiveLoopTest::limitIsSixTicks_data()
{
    QTest::addColumn<int>("ticks");
    QTest::addColumn<bool>("lost");
    QTest::newRow("none") << 0 << false;
    QTest::newRow("five") << 5 << false;
    QTest::newRow("six") << 6 << true;
    QTest::newRow("seven") << 7 << true;
    QTest::newRow("an hour") << 3600 << true;
}

void ReceiveLoopTest::limitIsSixTicks()
{
    QFETCH(int, ticks);
    QFETCH(bool, lost);
    SocketPair pair;
    int count = ticks;
    int handled = 0;
    QVERIFY(pair.send("x"));
    pair.closeTest();
    const auto end =
        vehicle::receiveUntilEnd(pair.product, count, [&](const vehicle::Received&) { ++handled; });
    QCOMPARE(handled, 1);
    QVERIFY(end.reason == (lost ? EndReason::HeartbeatLost : EndReason::ClosedByModule));
    QCOMPARE(end.missedTicks, lost ? ticks : 0);
    QCOMPARE(count, lost ? 0 : ticks);
}

void ReceiveLoopTest::handlerThatSetsTheCountBackKeepsTheConnection()
{
    SocketPair pair;
    int count = 6;
    QVERIFY(pair.send("heartbeat"));
    pair.closeTest();
    const auto end =
        vehicle::receiveUntilEnd(pair.product, count, [&](const vehicle::Received&) { count = 0; });
    QVERIFY(end.reason == EndReason::ClosedByModule);
}

void ReceiveLoopTest::silentModuleIsNotLost()
{
    SocketPair pair;
    pair.closeTest();
    int count = 100;
    const auto end = vehicle::receiveUntilEnd(pair.product, count, [](const vehicle::Received&) {});
    QVERIFY(end.reason == EndReason::ClosedByModule);
    QCOMPARE(count, 100);
}

void ReceiveLoopTest::interruptedReceiveGoesOn()
{
    const InterruptingSignal signal;
    SocketPair pair;
    std::atomic<int> handled{0};
    int count = 0;
    vehicle::ConnectionEnd end{EndReason::ReceiveError, -1};
    std::thread loop([&] {
        end = vehicle::receiveUntilEnd(pair.product, count,
                                       [&](const vehicle::Received&) { ++handled; });
    });
    pair.send("x");
    const bool begun = QTest::qWaitFor([&] { return handled == 1; });
    // After the first byte the thread blocks in recv(), so at least one of these signals interrupts
    // it.
    for (int number = 0; number < 50; ++number) {
        ::pthread_kill(loop.native_handle(), SIGUSR1);
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    pair.send("y");
    const bool wentOn = QTest::qWaitFor([&] { return handled == 2; });
    pair.closeTest();
    loop.join();
    QVERIFY(begun);
    QVERIFY(wentOn);
    QVERIFY(end.reason == EndReason::ClosedByModule);
}

void ReceiveLoopTest::interruptedReceiveChecksTheLimit()
{
    const InterruptingSignal signal;
    SocketPair pair;
    std::atomic<bool> ended{false};
    int count = 6;
    vehicle::ConnectionEnd end{EndReason::ReceiveError, -1};
    std::thread loop([&] {
        end = vehicle::receiveUntilEnd(pair.product, count, [](const vehicle::Received&) {});
        ended = true;
    });
    const bool inTime = QTest::qWaitFor([&] {
        if (!ended) {
            ::pthread_kill(loop.native_handle(), SIGUSR1);
        }
        return ended.load();
    });
    pair.closeTest();
    loop.join();
    QVERIFY(inTime);
    QVERIFY(end.reason == EndReason::HeartbeatLost);
    QCOMPARE(end.missedTicks, 6);
    QCOMPARE(count, 0);
}

BELUN_TEST(ReceiveLoopTest)
#include "ReceiveLoopTest.moc"
