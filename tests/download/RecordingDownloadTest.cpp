#include "download/RecordingDownload.h"

#include "tests/kit/NoDescriptorsLeft.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TestMain.h"

#include <limits>

#include <QFile>
#include <QList>
#include <QTemporaryDir>

using download::RecordingDownload;
using support::Peer;
using support::ScriptedServer;

namespace {

constexpr char address[] = "192.168.1.120";
constexpr quint16 port = 80;

} // namespace

class RecordingDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void missingSocketIsReportedImmediately();
    void refusedConnectionIsReportedImmediately();
    void headOfAConnectionThatFailedIsEmpty();
    void sixteenReceiveErrorsInARowEndTheBody();
    void errorCountsAsOneByteLess();
    void fileThatCannotBeOpenedIsReportedImmediately();
    void socketAndFileStayOpenUntilTheObjectEnds();
    void countOfMoreThan2GiBWraps();
};

void RecordingDownloadTest::missingSocketIsReportedImmediately()
{
    QByteArray printed;
    bool opened = true;
    {
        const support::StdoutCapture output;
        sys::StoppableCalls calls;
        RecordingDownload recording(calls);
        {
            const support::NoDescriptorsLeft limit;
            opened = recording.openSocket();
        }
        printed = output.text();
    }
    QVERIFY(!opened);
    QCOMPARE(printed, QByteArray("invalid socket descriptor: -1\n"));
}

void RecordingDownloadTest::refusedConnectionIsReportedImmediately()
{
    QByteArray printed;
    bool connected = true;
    {
        const support::StdoutCapture output;
        sys::StoppableCalls calls;
        RecordingDownload recording(calls);
        QVERIFY(recording.openSocket());
        connected = recording.connectToCamera();
        printed = output.text();
    }
    QVERIFY(!connected);
    QCOMPARE(printed, QByteArray("connect failed, return: -1\n"));
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

void RecordingDownloadTest::errorCountsAsOneByteLess()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) {
                              peer.send("abc");
                              peer.waitUntilRead();
                              peer.reset();
                          }),
                          address, port);
    const QTemporaryDir folder;
    const QByteArray path = folder.path().toUtf8() + "/recording";
    QList<qint64> counts;
    {
        sys::StoppableCalls calls;
        RecordingDownload recording(calls);
        QVERIFY(recording.openSocket());
        QVERIFY(recording.connectToCamera());
        QVERIFY(recording.openFile(folder.path().toUtf8() + "/", "recording"));
        recording.copyBody(1000, [&](qint64 received, qint64) { counts.append(received); });
    }
    QCOMPARE(counts, QList<qint64>({3, 2}));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("abc"));
}

void RecordingDownloadTest::fileThatCannotBeOpenedIsReportedImmediately()
{
    QByteArray printed;
    bool opened = true;
    {
        const support::StdoutCapture output;
        sys::StoppableCalls calls;
        RecordingDownload recording(calls);
        opened = recording.openFile("/nowhere/at/", "all");
        printed = output.text();
    }
    QVERIFY(!opened);
    QCOMPARE(printed, QByteArray("Create file failed\n"));
}

void RecordingDownloadTest::socketAndFileStayOpenUntilTheObjectEnds()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) {
                              peer.send("abc");
                              peer.halfClose();
                              peer.holdOpen();
                          }),
                          address, port);
    const QTemporaryDir folder;
    const QByteArray path = folder.path().toUtf8() + "/recording";
    {
        sys::StoppableCalls calls;
        RecordingDownload recording(calls);
        QVERIFY(recording.openSocket());
        QVERIFY(recording.connectToCamera());
        QVERIFY(recording.openFile(folder.path().toUtf8() + "/", "recording"));
        recording.copyBody(3, [](qint64, qint64) {});
        QCOMPARE(support::socketsConnectedTo(address, port), 1);
        QCOMPARE(support::descriptorsOn(path), 1);
    }
    QCOMPARE(support::socketsConnectedTo(address, port), 0);
    QCOMPARE(support::descriptorsOn(path), 0);
}

void RecordingDownloadTest::countOfMoreThan2GiBWraps()
{
    constexpr int pieces = 2049; // of one mebibyte each
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) {
                              const QByteArray mebibyte(1 << 20, 'x');
                              for (int number = 0; number < pieces; ++number) {
                                  peer.send(mebibyte);
                              }
                          }),
                          address, port);
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
