#include "posix/PipeSignalBlock.h"

#include "tests/kit/PipeSignal.h"
#include "tests/kit/SocketPair.h"
#include "tests/kit/TestMain.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <new>

#include <pthread.h>
#include <sys/socket.h>

#include <QList>
#include <QObject>
#include <QTest>

namespace {

/// Returns the numbers of all signals that this thread blocks.
QList<int> blockedSignals()
{
    sigset_t mask;
    ::pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    QList<int> blocked;
    for (int number = 1; number <= SIGRTMAX; ++number) {
        if (::sigismember(&mask, number) == 1) {
            blocked.append(number);
        }
    }
    return blocked;
}

bool isBlocked()
{
    return blockedSignals().contains(SIGPIPE);
}

bool isPending()
{
    sigset_t pending;
    ::sigpending(&pending);
    return ::sigismember(&pending, SIGPIPE) == 1;
}

} // namespace

class PipeSignalBlockTest : public QObject
{
    Q_OBJECT

private slots:
    void writingToAClosedPeerFailsWithoutASignal();
    void signalIsBlockedOnlyWhileTheObjectLives();
    void noOtherSignalIsBlocked();
    void signalThatWasPendingBeforeStaysPending();
};

void PipeSignalBlockTest::writingToAClosedPeerFailsWithoutASignal()
{
    const support::DeadlyPipeSignal deadly;
    support::SocketPair pair;
    pair.closeTest();
    ssize_t sent = 0;
    int error = 0;
    {
        const sys::PipeSignalBlock block;
        sent = ::send(pair.product, "a", 1, 0);
        QVERIFY(isPending());
    }
    error = errno;
    QCOMPARE(sent, ssize_t{-1});
    QCOMPARE(error, EPIPE);
    QVERIFY(!isPending());
}

void PipeSignalBlockTest::signalIsBlockedOnlyWhileTheObjectLives()
{
    QVERIFY(!isBlocked());
    {
        const sys::PipeSignalBlock outer;
        {
            const sys::PipeSignalBlock inner;
            QVERIFY(isBlocked());
        }
        QVERIFY(isBlocked());
    }
    QVERIFY(!isBlocked());
}

// The block is created in memory filled with 0xFF, so that a signal set that the constructor does
// not empty would contain every signal.
void PipeSignalBlockTest::noOtherSignalIsBlocked()
{
    QList<int> expected = blockedSignals();
    expected.append(SIGPIPE);
    std::sort(expected.begin(), expected.end());
    alignas(sys::PipeSignalBlock) std::array<unsigned char, sizeof(sys::PipeSignalBlock)> memory{};
    memory.fill(0xFF);
    auto* const block = new (memory.data()) sys::PipeSignalBlock;
    const QList<int> blocked = blockedSignals();
    block->~PipeSignalBlock();
    QCOMPARE(blocked, expected);
}

void PipeSignalBlockTest::signalThatWasPendingBeforeStaysPending()
{
    const support::DeadlyPipeSignal deadly;
    sigset_t pipe;
    ::sigemptyset(&pipe);
    ::sigaddset(&pipe, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    ::pthread_kill(::pthread_self(), SIGPIPE);
    {
        const sys::PipeSignalBlock block;
    }
    QVERIFY(isPending());
    const timespec atOnce{};
    ::sigtimedwait(&pipe, nullptr, &atOnce);
    ::pthread_sigmask(SIG_UNBLOCK, &pipe, nullptr);
}

BELUN_TEST(PipeSignalBlockTest)
#include "PipeSignalBlockTest.moc"
