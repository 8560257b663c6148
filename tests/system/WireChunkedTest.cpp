// The run of WireTest with a camera that sends chunked answers. The program never resets its
// HTTPResponse: after the first chunked answer, it reads only the first line of each later chunked
// body, so the window gets no data from them.
#include "tests/kit/RecordedText.h"
#include "tests/kit/TestMain.h"
#include "tests/system/WireRun.h"

class WireChunkedTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void runIsAsRecorded_data();
    void runIsAsRecorded();
};

void WireChunkedTest::initTestCase()
{
    const QString reason = support::whyNotToRecord();
    QVERIFY2(reason.isEmpty(), qPrintable(reason));
}

void WireChunkedTest::runIsAsRecorded_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("recorded");
    QTest::newRow("from the first list on") << "chunked=2"
                                            << "wire/chunked-from-the-list.txt";
    QTest::newRow("from the first download on") << "chunked=17"
                                                << "wire/chunked-from-the-download.txt";
}

void WireChunkedTest::runIsAsRecorded()
{
    QFETCH(QString, fault);
    QFETCH(QString, recorded);
    WireRun run(fault, false);
    run.play();
    if (QTest::currentTestFailed()) {
        return;
    }
    const QString difference = support::differenceToRecorded(recorded, run.text());
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

BELUN_NETWORK_TEST(WireChunkedTest)
#include "WireChunkedTest.moc"
