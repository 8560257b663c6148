#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsRebootTest : public QObject
{
    Q_OBJECT

private slots:
    void faultHasTheStatedEffect_data() { addFaultRows(rebootFaultCases()); }
    void faultHasTheStatedEffect() { playFaultRow(rebootFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsRebootTest)
#include "FaultsRebootTest.moc"
