#include "link/ReceiveLoop.h"

#include "tests/kit/SocketPair.h"
#include "tests/kit/TestMain.h"
#include "tests/link/LinkConversations.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <thread>

#include <pthread.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

using support::Conversation;
using support::Exchange;
using support::SocketPair;
using vehicle::EndReason;

namespace {

/// Returns the bytes as a conversation states them: "61 62 00*98".
QString bytesText(const vehicle::Received& received)
{
    QStringList runs;
    for (auto begin = received.begin(); begin != received.end();) {
        const auto end =
            std::find_if(begin, received.end(), [&](auto byte) { return byte != *begin; });
        const auto count = end - begin;
        const QString byte = QStringLiteral("%1").arg(*begin, 2, 16, QLatin1Char('0')).toUpper();
        runs.append(count == 1 ? byte : byte + "*" + QString::number(count));
        begin = end;
    }
    return runs.join(' ');
}

QString reasonText(EndReason reason)
{
    switch (reason) {
    case EndReason::ClosedByModule:
        return "closed";
    case EndReason::ReceiveError:
        return "failed";
    case EndReason::HeartbeatLost:
        return "heartbeat lost";
    }
    return "unknown reason";
}

/// Plays the module, which sends each piece after the previous one was handled. Returns what
/// happened.
QString happensIn(const Exchange& exchange)
{
    SocketPair pair;
    auto next = exchange.pieces.begin();
    const auto sendNext = [&] {
        if (next == exchange.pieces.end()) {
            return;
        }
        pair.send(QByteArray::fromStdString(next->bytes));
        if (++next == exchange.pieces.end()) {
            if (exchange.peerResets) {
                ::send(pair.product, "x", 1, MSG_NOSIGNAL); // closing with an unread byte resets
            }
            pair.closeTest();
        }
    };
    QStringList all;
    int ticks = ticksOf(exchange);
    sendNext();
    const vehicle::ConnectionEnd end =
        vehicle::receiveUntilEnd(pair.product, ticks, [&](const vehicle::Received& received) {
            all.append("handles " + bytesText(received));
            sendNext();
        });
    const QString missed = QStringLiteral(" after %1 ticks").arg(end.missedTicks);
    all.append(reasonText(end.reason) + (end.missedTicks == 0 ? QString() : missed));
    if (ticks != 0) {
        all.append(QStringLiteral("%1 ticks left").arg(ticks));
    }
    return all.join(", ");
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
    void conversationHappensAsWritten_data() { addConversations("receiver"); }
    void conversationHappensAsWritten();
    void handlerThatSetsTheCountBackKeepsTheConnection();
    void interruptedReceiveGoesOn();
    void interruptedReceiveChecksTheLimit();
};

void ReceiveLoopTest::conversationHappensAsWritten()
{
    QFETCH(Conversation, conversation);
    for (const Exchange& exchange : conversation.exchanges) {
        QCOMPARE(happensIn(exchange), QString::fromStdString(exchange.result));
    }
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
