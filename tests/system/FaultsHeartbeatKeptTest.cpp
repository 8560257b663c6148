#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsHeartbeatKeptTest : public QObject
{
    Q_OBJECT

private slots:
    void faultHasTheStatedEffect_data() { addFaultRows(heartbeatKeptFaultCases()); }
    void faultHasTheStatedEffect() { playFaultRow(heartbeatKeptFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsHeartbeatKeptTest)
#include "FaultsHeartbeatKeptTest.moc"
