#include "posix/StoppableCalls.h"

#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/SocketPair.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"

#include <atomic>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QObject>
#include <QTest>

namespace {

const int stopLimit = 2000 * support::timeFactor(); // milliseconds

bool atOnce(unsigned long /*milliseconds*/)
{
    return true;
}

/// A call that receives on its own socket until it is stopped.
class Receiving
{
public:
    explicit Receiving(sys::StoppableCalls& calls)
        : m_thread([this, &calls] {
              sys::StoppableCalls::Call call(calls);
              call.waitOn(m_sockets.product);
              entered = true;
              char byte = 0;
              result = ::recv(m_sockets.product, &byte, 1, 0);
              stopped = calls.stopRequested();
          })
    {
    }
    ~Receiving()
    {
        m_sockets.send("x"); // ends the call even if nothing has stopped it
        m_thread.join();
    }
    Receiving(const Receiving&) = delete;
    Receiving& operator=(const Receiving&) = delete;

    std::atomic<bool> entered{false};
    std::atomic<ssize_t> result{-2};
    std::atomic<bool> stopped{false};

private:
    support::SocketPair m_sockets;
    std::thread m_thread; // last, because it uses the other members
};

} // namespace

class StoppableCallsTest : public QObject
{
    Q_OBJECT

private slots:
    void keptDescriptorsAreClosedWithTheObject();
    void requestAloneInterruptsNothing();
    void stopEndsEveryCallThatWaits();
    void stopEndsAConnect();
    void stopWaitsForACallThatIsNotBlocked();
    void stopContinuesUntilTheOwnerHasFinished();
};

void StoppableCallsTest::keptDescriptorsAreClosedWithTheObject()
{
    const int before = support::openSockets();
    {
        sys::StoppableCalls calls;
        calls.keep(::socket(AF_INET, SOCK_STREAM, 0));
        calls.keep(-1);
        calls.keep(::socket(AF_INET, SOCK_STREAM, 0));
        QCOMPARE(support::openSockets(), before + 2);
    }
    QCOMPARE(support::openSockets(), before);
}

void StoppableCallsTest::requestAloneInterruptsNothing()
{
    sys::StoppableCalls calls;
    const Receiving receiving(calls);
    QTRY_VERIFY(receiving.entered);
    QVERIFY(!calls.stopRequested());
    calls.requestStop();
    QVERIFY(calls.stopRequested());
    QCOMPARE(receiving.result.load(), ssize_t{-2});
}

void StoppableCallsTest::stopEndsEveryCallThatWaits()
{
    sys::StoppableCalls calls;
    const Receiving first(calls);
    const Receiving second(calls);
    const Receiving third(calls);
    QTRY_VERIFY(first.entered && second.entered && third.entered);
    QElapsedTimer time;
    time.start();
    calls.stopAndWait(atOnce);
    QVERIFY2(time.elapsed() < stopLimit, qPrintable(QString::number(time.elapsed()) + " ms"));
    for (const Receiving* receiving : {&first, &second, &third}) {
        QCOMPARE(receiving->result.load(), ssize_t{0});
        QVERIFY(receiving->stopped);
    }
}

void StoppableCallsTest::stopEndsAConnect()
{
    const support::SilentAddress silent("127.0.0.1", 0);
    sys::StoppableCalls calls;
    std::atomic<bool> connecting{false};
    std::thread caller([&] {
        sys::StoppableCalls::Call call(calls);
        const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
        calls.keep(socket);
        call.waitOn(socket);
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = inet_addr("127.0.0.1");
        place.sin_port = htons(silent.port());
        connecting = true;
        while (!calls.stopRequested()) {
            static_cast<void>(
                ::connect(socket, reinterpret_cast<const sockaddr*>(&place), sizeof place));
        }
    });
    while (!connecting) {
        std::this_thread::yield();
    }
    QElapsedTimer time;
    time.start();
    calls.stopAndWait(atOnce);
    const qint64 elapsed = time.elapsed();
    caller.join();
    QVERIFY2(elapsed < stopLimit, qPrintable(QString::number(elapsed) + " ms"));
}

void StoppableCallsTest::stopWaitsForACallThatIsNotBlocked()
{
    sys::StoppableCalls calls;
    std::atomic<bool> entered{false};
    std::atomic<bool> leaving{false};
    std::thread caller([&] {
        const sys::StoppableCalls::Call call(calls);
        entered = true;
        while (!calls.stopRequested()) {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // lets stopAndWait() wait
        leaving = true;
    });
    while (!entered) {
        std::this_thread::yield();
    }
    calls.stopAndWait(atOnce);
    const bool left = leaving;
    caller.join();
    QVERIFY(left);
}

void StoppableCallsTest::stopContinuesUntilTheOwnerHasFinished()
{
    sys::StoppableCalls calls;
    std::vector<unsigned long> limits;
    calls.stopAndWait([&](unsigned long milliseconds) {
        limits.push_back(milliseconds);
        return limits.size() == 3;
    });
    QCOMPARE(limits, (std::vector<unsigned long>{5, 5, 5}));
}

BELUN_TEST(StoppableCallsTest)
#include "StoppableCallsTest.moc"
