#include "posix/PipeSignalBlock.h"

#include "tests/support/PipeSignal.h"
#include "tests/support/SocketPair.h"
#include "tests/support/TestMain.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <pthread.h>
#include <sys/socket.h>

#include <QObject>
#include <QTest>

namespace {

bool isBlocked()
{
    sigset_t mask;
    ::pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return ::sigismember(&mask, SIGPIPE) == 1;
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
