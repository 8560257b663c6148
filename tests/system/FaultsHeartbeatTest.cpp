#include "tests/support/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsHeartbeatTest : public QObject
{
    Q_OBJECT

private slots:
    void faultIsSeenAsStated_data() { addFaultRows(heartbeatFaultCases()); }
    void faultIsSeenAsStated() { playFaultRow(heartbeatFaultCases()); }
};

BELUN_NETWORK_TEST_MAIN(FaultsHeartbeatTest)
#include "FaultsHeartbeatTest.moc"
