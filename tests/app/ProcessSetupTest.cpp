// The process setup before anything else runs.
#include "app/ProcessSetup.h"

#include "tests/kit/TestMain.h"

#include <cerrno>
#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

#include <QObject>
#include <QTest>

class ProcessSetupTest : public QObject
{
    Q_OBJECT

private slots:
    void writingToAClosedPipeIsOnlyAnError();
    void softLimitOfDescriptorsIsRaisedToTheHardOne();
    void settingUpTwiceChangesNothing();

private:
    static rlimit descriptorLimit()
    {
        rlimit limit{};
        ::getrlimit(RLIMIT_NOFILE, &limit);
        return limit;
    }
    static void (*pipeSignalHandler())(int)
    {
        struct sigaction action = {};
        ::sigaction(SIGPIPE, nullptr, &action);
        return action.sa_handler;
    }
};

void ProcessSetupTest::writingToAClosedPipeIsOnlyAnError()
{
    std::signal(SIGPIPE, SIG_DFL);
    app::setUpProcess();
    QVERIFY(pipeSignalHandler() == SIG_IGN); // otherwise the write below ends the test

    int ends[2] = {-1, -1};
    QCOMPARE(::pipe(ends), 0);
    ::close(ends[0]);
    const ssize_t written = ::write(ends[1], "x", 1);
    const int error = errno;
    ::close(ends[1]);
    QCOMPARE(written, ssize_t{-1});
    QCOMPARE(error, EPIPE);
}

void ProcessSetupTest::softLimitOfDescriptorsIsRaisedToTheHardOne()
{
    rlimit lowered = descriptorLimit();
    const rlim_t hard = lowered.rlim_max;
    QVERIFY(hard > 128);
    lowered.rlim_cur = 128;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &lowered), 0);

    app::setUpProcess();
    QCOMPARE(descriptorLimit().rlim_cur, hard);
    QCOMPARE(descriptorLimit().rlim_max, hard);
}

void ProcessSetupTest::settingUpTwiceChangesNothing()
{
    app::setUpProcess();
    const rlimit before = descriptorLimit();
    app::setUpProcess();
    QCOMPARE(descriptorLimit().rlim_cur, before.rlim_cur);
    QCOMPARE(descriptorLimit().rlim_max, before.rlim_max);
    QVERIFY(pipeSignalHandler() == SIG_IGN);
}

BELUN_TEST(ProcessSetupTest)

#include "ProcessSetupTest.moc"
