#include "link/ControlClientThread.h"

#include "tests/kit/TestMain.h"
#include "tests/link/LinkPlay.h"
#include "tests/link/LinkThreadTest.h"

using support::Exchange;

class ControlClientThreadTest : public LinkThreadTest
{
    Q_OBJECT

public:
    ControlClientThreadTest() : LinkThreadTest(controlModule()) {}

private slots:
    void linkedFlagFollowsTheHeartbeat();
};

void ControlClientThreadTest::linkedFlagFollowsTheHeartbeat()
{
    LinkPlay play(controlModule());
    const auto* thread = qobject_cast<const ControlClientThread*>(&play.thread());
    const auto flagAfter = [&](const char* bytes, bool closes, const char* result) {
        const Exchange exchange{"control", {}, {{bytes, {}}}, {}, closes, false, result, {}};
        return play.happensIn(exchange) == result && thread->linkedFlag;
    };
    QVERIFY(!thread->linkedFlag);
    QVERIFY(!flagAfter("\xAA\xAF", false, "version 0 0 0 0 0"));
    QVERIFY(flagAfter("\xAA\xAF\x04", false, "sends AA AF 04 01 01 5F, linked"));
    QVERIFY(!flagAfter("", true, "lost, logs \"control nRead = 0\", connects"));
}

BELUN_NETWORK_TEST(ControlClientThreadTest)
#include "ControlClientThreadTest.moc"
