#include "download/RecordingDownload.h"

#include "tests/download/DownloadScene.h"
#include "tests/kit/NoDescriptorsLeft.h"
#include "tests/kit/TestMain.h"

#include <limits>

using download::RecordingDownload;
using support::Peer;

namespace {

/// Runs a step of a download. The step must fail and must have printed the text when it returns.
template <class Step>
void failsAndPrints(const Step& step, const QByteArray& text)
{
    const support::StdoutCapture output;
    sys::StoppableCalls calls;
    RecordingDownload recording(calls);
    QVERIFY(!step(recording));
    QCOMPARE(output.text(), text);
}

} // namespace

class RecordingDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void failedStepIsReportedImmediately();
    void headOfAConnectionThatFailedIsEmpty();
    void sixteenReceiveErrorsInARowEndTheBody();
    void countOfMoreThan2GiBWraps();
};

void RecordingDownloadTest::failedStepIsReportedImmediately()
{
    failsAndPrints(
        [](RecordingDownload& recording) {
            const support::NoDescriptorsLeft limit;
            return recording.openSocket();
        },
        "invalid socket descriptor: -1\n");
    failsAndPrints(
        [](RecordingDownload& recording) {
            return !recording.openSocket() || recording.connectToCamera();
        },
        "connect failed, return: -1\n");
    failsAndPrints(
        [](RecordingDownload& recording) { return recording.openFile("/nowhere/at/", "all"); },
        "Create file failed\n");
}

void RecordingDownloadTest::headOfAConnectionThatFailedIsEmpty()
{
    sys::StoppableCalls calls;
    RecordingDownload recording(calls);
    QVERIFY(recording.openSocket());
    download::ResponseHead head;
    QVERIFY(recording.readHead(head));
    QCOMPARE(QByteArray(head.text()), QByteArray(""));
}

void RecordingDownloadTest::sixteenReceiveErrorsInARowEndTheBody()
{
    sys::StoppableCalls calls;
    RecordingDownload recording(calls);
    QVERIFY(recording.openSocket());
    QList<qint64> counts;
    recording.copyBody(1000, [&](qint64 received, qint64 announced) {
        counts.append(received);
        QCOMPARE(announced, qint64{1000});
    });
    QCOMPARE(counts, QList<qint64>(
                         {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11, -12, -13, -14, -15, -16}));
}

void RecordingDownloadTest::countOfMoreThan2GiBWraps()
{
    const Camera camera([](Peer& peer) {
        const QByteArray mebibyte(1 << 20, 'x');
        for (int number = 0; number < 2049; ++number) {
            peer.send(mebibyte);
        }
    });
    sys::StoppableCalls calls;
    RecordingDownload recording(calls);
    QVERIFY(recording.openSocket());
    QVERIFY(recording.connectToCamera());
    qint64 largest = 0;
    qint64 last = 0;
    recording.copyBody(qint64{3} << 30, [&](qint64 received, qint64) {
        largest = qMax(largest, received);
        last = received;
    });
    QVERIFY(largest <= std::numeric_limits<qint32>::max());
    QCOMPARE(last, qint64{-2146435072}); // 2049 MiB minus 4 GiB
}

BELUN_NETWORK_TEST(RecordingDownloadTest)
#include "RecordingDownloadTest.moc"
