#include "link/ControlClientThread.h"

#include "tests/kit/LogCapture.h"
#include "tests/kit/TestMain.h"
#include "tests/link/LinkThreadTest.h"

#include <QTest>

class ControlClientThreadTest : public LinkThreadTest
{
    Q_OBJECT

public:
    ControlClientThreadTest() : LinkThreadTest(controlModule()) {}

private slots:
    void newThreadIsNotLinked();
};

// After each signal, SignalRecorder checks the flag.
void ControlClientThreadTest::newThreadIsNotLinked()
{
    const support::LogCapture log;
    QVERIFY(!ControlClientThread(nullptr).linkedFlag);
}

BELUN_NETWORK_TEST(ControlClientThreadTest)
#include "ControlClientThreadTest.moc"
