#include "link/ReceiveLoop.h"

#include "tests/kit/SocketPair.h"
#include "tests/kit/TestMain.h"
#include "tests/link/LinkConversations.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <map>
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

/// Plays the module, which sends each piece after the loop has handled the previous one. Returns
/// what happened.
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
    const std::map<EndReason, QString> reasons{{EndReason::ClosedByModule, "closed"},
                                               {EndReason::ReceiveError, "failed"},
                                               {EndReason::HeartbeatLost, "heartbeat lost"}};
    const QString missed = QStringLiteral(" after %1 ticks").arg(end.missedTicks);
    all.append(reasons.at(end.reason) + (end.missedTicks == 0 ? QString() : missed));
    if (ticks != 0) {
        all.append(QStringLiteral("%1 ticks left").arg(ticks));
    }
    return all.join(", ");
}

/// A receive loop in a separate thread, whose system calls a signal can interrupt.
class RunningLoop
{
public:
    explicit RunningLoop(int ticks) : count(ticks)
    {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGUSR1, &action, &m_before);
    }
    ~RunningLoop() { ::sigaction(SIGUSR1, &m_before, nullptr); }
    RunningLoop(const RunningLoop&) = delete;
    RunningLoop& operator=(const RunningLoop&) = delete;

    void interrupt() { ::pthread_kill(m_thread.native_handle(), SIGUSR1); }
    /// Closes the connection and returns how the loop ended.
    vehicle::ConnectionEnd finish()
    {
        pair.closeTest();
        m_thread.join();
        return m_end;
    }

    SocketPair pair;
    int count;
    std::atomic<int> handled{0};
    std::atomic<bool> ended{false};

private:
    struct sigaction m_before = {};
    vehicle::ConnectionEnd m_end{EndReason::ReceiveError, -1};
    std::thread m_thread{[this] {
        m_end = vehicle::receiveUntilEnd(pair.product, count,
                                         [this](const vehicle::Received&) { ++handled; });
        ended = true;
    }};
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
    RunningLoop loop(0);
    loop.pair.send("x");
    const bool begun = QTest::qWaitFor([&] { return loop.handled == 1; });
    // After the first byte the thread blocks in recv(), so at least one of these signals interrupts
    // it.
    for (int number = 0; number < 50; ++number) {
        loop.interrupt();
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    loop.pair.send("y");
    const bool wentOn = QTest::qWaitFor([&] { return loop.handled == 2; });
    const EndReason reason = loop.finish().reason;
    QVERIFY(begun);
    QVERIFY(wentOn);
    QVERIFY(reason == EndReason::ClosedByModule);
}

void ReceiveLoopTest::interruptedReceiveChecksTheLimit()
{
    RunningLoop loop(6);
    const bool inTime = QTest::qWaitFor([&] {
        if (!loop.ended) {
            loop.interrupt();
        }
        return loop.ended.load();
    });
    const vehicle::ConnectionEnd end = loop.finish();
    QVERIFY(inTime);
    QVERIFY(end.reason == EndReason::HeartbeatLost);
    QCOMPARE(end.missedTicks, 6);
    QCOMPARE(loop.count, 0);
}

BELUN_TEST(ReceiveLoopTest)
#include "ReceiveLoopTest.moc"
