#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsAnswersTest : public QObject
{
    Q_OBJECT

private slots:
    void faultHasTheStatedEffect_data() { addFaultRows(answerFaultCases()); }
    void faultHasTheStatedEffect() { playFaultRow(answerFaultCases()); }
};

BELUN_NETWORK_TEST(FaultsAnswersTest)
#include "FaultsAnswersTest.moc"
