// The lines of --json, letter for letter: other programs read them.
#include "verify/Json.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <QJsonDocument>
#include <QJsonObject>

using verify::Reason;
using verify::Recording;
using verify::Result;
using verify::Summary;

namespace {

QByteArray json(const Recording& recording)
{
    return QByteArray::fromStdString(verify::jsonLine(recording));
}

} // namespace

class JsonTest : public QObject
{
    Q_OBJECT

private slots:
    void recordingIsOneObject();
    void everyResultAndReasonHasAWordOfItsOwn();
    void namesReadBackAsTheyAre_data();
    void namesReadBackAsTheyAre();
    void nothingATerminalObeysIsWritten();
    void bytesOfOtherEncodingsAreKept();
    void summaryIsOneObject();
};

void JsonTest::recordingIsOneObject()
{
    Recording recording;
    recording.name = "A.MP4";
    recording.result = Result::Different;
    recording.cardBytes = 4294967297;
    recording.localBytes = 4294967297;
    recording.difference = 0;
    QCOMPARE(json(recording),
             QByteArray(R"({"type":"recording","name":"A.MP4","result":"different","safe":false,)"
                        R"("cardBytes":4294967297,"localBytes":4294967297,"firstDifference":0})"));
    Recording link;
    link.name = "B";
    link.reason = Reason::Link;
    QCOMPARE(json(link), QByteArray(R"({"type":"recording","name":"B","result":"unknown",)"
                                    R"("reason":"link","safe":false})"));
}

void JsonTest::everyResultAndReasonHasAWordOfItsOwn()
{
    QStringList words;
    for (int result = 0; result <= int(Result::Unknown); ++result) {
        Recording recording;
        recording.result = Result(result);
        words << QJsonDocument::fromJson(json(recording))["result"].toString();
    }
    QCOMPARE(words.join(' '), QString("same-size same-content different shorter longer "
                                      "not-on-computer not-on-card nowhere unknown"));
    words.clear();
    for (int reason = 1; reason <= int(Reason::FileChanged); ++reason) {
        Recording recording;
        recording.reason = Reason(reason);
        words << QJsonDocument::fromJson(json(recording))["reason"].toString();
    }
    QCOMPARE(words.join(' '),
             QString("no-details no-content lengths-differ two-entries no-name not-downloadable "
                     "too-large link folder no-file name-too-long file-error file-changed"));
}

void JsonTest::namesReadBackAsTheyAre_data()
{
    const support::Rows<QString> row("name");
    row("quotes", "a\"b\\c");
    row("controls", QString::fromUtf8("a\x1b\x01\x7f\r\n\t"));
    row("C1 and bidi", QString::fromUtf8("\xc2\x9b\xe2\x80\xae"));
    row("Chinese", QString::fromUtf8("\xe6\xb5\xb7"));
    row("beyond 16 bits", QString::fromUtf8("\xf0\x9f\x90\x9f\xf3\xa0\x81\x81"));
}

void JsonTest::namesReadBackAsTheyAre()
{
    QFETCH(QString, name);
    Recording recording;
    recording.name = name.toStdString();
    const QByteArray line = json(recording);
    QCOMPARE(QJsonDocument::fromJson(line)["name"].toString(), name);
    QVERIFY(!line.contains("nameBytes"));
}

void JsonTest::nothingATerminalObeysIsWritten()
{
    Recording recording;
    recording.name = "\x1b\x7f\xc2\x9b\xe2\x80\xae\xf3\xa0\x81\x81";
    QCOMPARE(json(recording), QByteArray(R"({"type":"recording","name":)"
                                         R"("\u001b\u007f\u009b\u202e\udb40\udc41",)"
                                         R"("result":"unknown","safe":false})"));
}

void JsonTest::bytesOfOtherEncodingsAreKept()
{
    Recording recording;
    recording.name = "\xe9.MP4";
    const QJsonObject object = QJsonDocument::fromJson(json(recording)).object();
    QCOMPARE(object["name"].toString(), QString(QChar(0xFFFD)) + ".MP4");
    QCOMPARE(object["nameBytes"].toString(), QString("e92e4d5034"));
}

void JsonTest::summaryIsOneObject()
{
    Summary summary;
    summary.verdict = verify::Verdict::NotSafe;
    summary.contents = true;
    summary.complete = true;
    summary.counted = 2;
    summary.listed = 2;
    summary.safe = 1;
    summary.notSafe.resize(1);
    summary.missingBytes = 7;
    summary.freeBytes = 9;
    summary.folder = "/d/DCIM/";
    QCOMPARE(QByteArray::fromStdString(verify::jsonLine(summary, "No.", "")),
             QByteArray(R"({"type":"summary","result":"not-safe","status":1,)"
                        R"("contentsCompared":true,"onlyNamed":false,"complete":true,)"
                        R"("cardChanged":false,"counted":2,"listed":2,"safe":1,"notSafe":1,)"
                        R"("missingBytes":7,"freeBytes":9,"folder":"/d/DCIM/","text":"No."})"));
    const QByteArray failed = QByteArray::fromStdString(verify::jsonLine(Summary(), "No.", "Why."));
    QCOMPARE(QJsonDocument::fromJson(failed)["result"].toString(), QString("unknown"));
    QCOMPARE(QJsonDocument::fromJson(failed)["status"].toInt(), 2);
    QCOMPARE(QJsonDocument::fromJson(failed)["failure"].toString(), QString("Why."));
    QVERIFY(!failed.contains("freeBytes"));
}

BELUN_TEST(JsonTest)

#include "JsonTest.moc"
