#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void faultHasTheStatedEffect_data() { addFaultRows(downloadFaultCases()); }
    void faultHasTheStatedEffect() { playFaultRow(downloadFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsDownloadTest)
#include "FaultsDownloadTest.moc"
