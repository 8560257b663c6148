#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsHeartbeatLostTest : public QObject
{
    Q_OBJECT

private slots:
    void faultHasTheStatedEffect_data() { addFaultRows(heartbeatLostFaultCases()); }
    void faultHasTheStatedEffect() { playFaultRow(heartbeatLostFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsHeartbeatLostTest)
#include "FaultsHeartbeatLostTest.moc"
