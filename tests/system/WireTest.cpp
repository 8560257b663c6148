// Compares the bytes that the window and the vehicle exchange in a user session with a recording.
//
// With chunked answers: the program never resets its HTTPResponse. After the first chunked answer,
// it reads only the first line of each later chunked body, so the window gets no data from them.
#include "tests/kit/RecordedText.h"
#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"
#include "tests/system/WireRun.h"

#include <optional>

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

class WireTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void continuousIntegrationDoesNotRecord();
    void runIsAsRecorded_data();
    void runIsAsRecorded();
};

void WireTest::initTestCase()
{
    const QString reason = support::whyNotToRecord();
    QVERIFY2(reason.isEmpty(), qPrintable(reason));
}

void WireTest::continuousIntegrationDoesNotRecord()
{
    const QString path = support::dataPath("wire/healthy.txt");
    const QDateTime before = QFileInfo(path).lastModified();
    QProcess other;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("CI", "true");
    environment.insert("BELUN_RECORD", "1");
    other.setProcessEnvironment(environment);
    other.start(QCoreApplication::applicationFilePath(), {"Wire", "runIsAsRecorded:healthy"});
    QVERIFY(other.waitForFinished());
    const QByteArray output = other.readAllStandardOutput();
    QVERIFY2(output.contains("recording is off in continuous integration"), output.constData());
    QVERIFY(other.exitCode() != 0);
    QCOMPARE(QFileInfo(path).lastModified(), before);
}

void WireTest::runIsAsRecorded_data()
{
    const support::Rows<QString, bool> row("fault", "emptyingIsTold");
    row("healthy", "", true);
    row("chunked-from-the-list", "chunked=2", false);
    row("chunked-from-the-download", "chunked=17", false);
}

void WireTest::runIsAsRecorded()
{
    QFETCH(QString, fault);
    QFETCH(bool, emptyingIsTold);
    std::optional<WireRun> run;
    for (int attempt = 0; attempt < 5 && (!run || run->reportMissed()); ++attempt) {
        run.emplace(fault, emptyingIsTold);
        run->play();
        if (QTest::currentTestFailed()) {
            return;
        }
    }
    QVERIFY(!run->reportMissed());
    const QString difference = support::differenceToRecorded(
        QString("wire/%1.txt").arg(QTest::currentDataTag()), run->text());
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

BELUN_NETWORK_TEST(WireTest)
#include "WireTest.moc"
