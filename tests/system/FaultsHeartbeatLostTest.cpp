#include "tests/support/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsHeartbeatLostTest : public QObject
{
    Q_OBJECT

private slots:
    void faultIsSeenAsStated_data() { addFaultRows(heartbeatLostFaultCases()); }
    void faultIsSeenAsStated() { playFaultRow(heartbeatLostFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsHeartbeatLostTest)
#include "FaultsHeartbeatLostTest.moc"
