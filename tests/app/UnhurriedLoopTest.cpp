// Rests of the event loop, and that nothing suffers from them.
#include "app/UnhurriedLoop.h"

#include "tests/support/TestMain.h"

#include <algorithm>
#include <memory>

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QtTest>

namespace {

constexpr int waits = 1000;

/// Nanoseconds that so many waits take which find something to do at once.
qint64 timeOfWaits()
{
    QEventLoop loop;
    QElapsedTimer time;
    time.start();
    for (int i = 0; i < waits; ++i) {
        QMetaObject::invokeMethod(
            &loop, [] {}, Qt::QueuedConnection);
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return time.nsecsElapsed();
}

constexpr qint64 allRests = 1000LL * waits * static_cast<qint64>(UnhurriedLoop::rest);

} // namespace

class UnhurriedLoopTest : public QObject
{
    Q_OBJECT

private slots:
    void activeLoopRestsBeforeEachWait();
    void loopThatIsNotSwitchedOnDoesNotRest();
    void switchedOffItDoesNotRest();
    void switchedOnTwiceItRestsOnce();
    void destroyedItDoesNotRest();
    void whatAnotherThreadSendsArrivesInOrder();
};

void UnhurriedLoopTest::activeLoopRestsBeforeEachWait()
{
    UnhurriedLoop loop;
    loop.setActive(true);
    QVERIFY(timeOfWaits() >= allRests);
}

void UnhurriedLoopTest::loopThatIsNotSwitchedOnDoesNotRest()
{
    const UnhurriedLoop loop;
    QVERIFY(timeOfWaits() < allRests);
}

void UnhurriedLoopTest::switchedOffItDoesNotRest()
{
    UnhurriedLoop loop;
    loop.setActive(true);
    loop.setActive(false);
    QVERIFY(timeOfWaits() < allRests);
}

void UnhurriedLoopTest::switchedOnTwiceItRestsOnce()
{
    UnhurriedLoop loop;
    loop.setActive(true);
    loop.setActive(true);
    loop.setActive(false);
    QVERIFY(timeOfWaits() < allRests);
}

void UnhurriedLoopTest::destroyedItDoesNotRest()
{
    {
        UnhurriedLoop loop;
        loop.setActive(true);
    }
    QVERIFY(timeOfWaits() < allRests);
}

void UnhurriedLoopTest::whatAnotherThreadSendsArrivesInOrder()
{
    constexpr int count = 20'000;
    UnhurriedLoop unhurried;
    unhurried.setActive(true);
    QList<int> arrived;
    QEventLoop loop;
    const std::unique_ptr<QThread> sender(QThread::create([&] {
        for (int i = 0; i < count; ++i) {
            QMetaObject::invokeMethod(
                &loop, [&arrived, i] { arrived.append(i); }, Qt::QueuedConnection);
        }
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    }));
    sender->start();
    loop.exec();
    sender->wait();
    QCOMPARE(arrived.size(), count);
    QVERIFY(std::is_sorted(arrived.cbegin(), arrived.cend()));
}

BELUN_TEST_MAIN(UnhurriedLoopTest)

#include "UnhurriedLoopTest.moc"
