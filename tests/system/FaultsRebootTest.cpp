#include "tests/support/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsRebootTest : public QObject
{
    Q_OBJECT

private slots:
    void faultIsSeenAsStated_data() { addFaultRows(rebootFaultCases()); }
    void faultIsSeenAsStated() { playFaultRow(rebootFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsRebootTest)
#include "FaultsRebootTest.moc"
