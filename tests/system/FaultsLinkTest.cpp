#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void faultHasTheStatedEffect_data() { addFaultRows(linkFaultCases()); }
    void faultHasTheStatedEffect() { playFaultRow(linkFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsLinkTest)
#include "FaultsLinkTest.moc"
