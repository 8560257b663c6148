#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsChangeTest : public QObject
{
    Q_OBJECT

private slots:
    void faultHasTheStatedEffect_data() { addFaultRows(changeFaultCases()); }
    void faultHasTheStatedEffect() { playFaultRow(changeFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsChangeTest)
#include "FaultsChangeTest.moc"
