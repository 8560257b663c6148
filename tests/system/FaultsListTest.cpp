#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsListTest : public QObject
{
    Q_OBJECT

private slots:
    void faultHasTheStatedEffect_data() { addFaultRows(listFaultCases()); }
    void faultHasTheStatedEffect() { playFaultRow(listFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsListTest)
#include "FaultsListTest.moc"
