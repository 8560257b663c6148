#include "tests/support/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void faultIsSeenAsStated_data() { addFaultRows(linkFaultCases()); }
    void faultIsSeenAsStated() { playFaultRow(linkFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsLinkTest)
#include "FaultsLinkTest.moc"
