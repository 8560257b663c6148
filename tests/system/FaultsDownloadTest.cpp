#include "tests/support/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void faultIsSeenAsStated_data() { addFaultRows(downloadFaultCases()); }
    void faultIsSeenAsStated() { playFaultRow(downloadFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsDownloadTest)
#include "FaultsDownloadTest.moc"
