// The download thread and its exchange with the camera.
#include "download/DownloadFileThread.h"

#include "tests/download/CameraPlay.h"
#include "tests/download/DownloadScene.h"
#include "tests/kit/MetaMethods.h"
#include "tests/kit/NoDescriptorsLeft.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/PipeSignal.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/TestMain.h"

#include <atomic>
#include <memory>

#include <QDir>
#include <QFile>
#include <QMetaObject>

using support::Peer;

namespace {

const QByteArray urlPrefix = "http://192.168.1.120/sd/DCIM/100ZEPNA/";

/// Returns `size` bytes in which a lost or duplicated piece can be recognised.
QByteArray pattern(int size)
{
    QByteArray bytes;
    for (int number = 0; bytes.size() < size; ++number) {
        bytes.append(QByteArray::number(number)).append('\n');
    }
    return bytes.left(size);
}

QString localPath(const QString& name)
{
    return QDir::homePath() + "/Desktop/DCIM/" + name;
}

QByteArray contentOf(const QString& name)
{
    QFile file(localPath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

/// Returns a thread that downloads a recording by calling DownloadFile() directly.
std::unique_ptr<QThread> callerOf(DownloadFileThread& thread, const QString& name)
{
    return std::unique_ptr<QThread>(
        QThread::create([&thread, name] { thread.DownloadFile(name); }));
}

} // namespace

class DownloadFileThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void metaObjectHasTwoSignalsAndTwoSlots();
    void newThreadKnowsTheCard();
    void constructionAndDestructionAreLogged();
    void requestNamesTheRecordingAndTheCamera_data();
    void requestNamesTheRecordingAndTheCamera();
    void recordingArrivesByteForByte();
    void refusedConnectionStillFinishes_data();
    void refusedConnectionStillFinishes();
    void downloadWithoutADescriptorStillFinishes();
    void failureIsPrintedWhileTheDownloadGoesOn();
    void socketAndFileStayOpenUntilTheObjectEnds();
    void downloadFileWorksInTheCallingThread();
    void slotOfTheLastSignalMayDeleteTheObject();
    void overlappingCallsEachFillTheirOwnFile();
    void destructionEndsEveryCall();
    void destructionWaitsForTheSlotsOfTheLastSignal();
    void slotOfTheLastSignalMayStopTheThread();
    void headIsParsedThroughTheMetaObject();
    void stopEndsTheDownload_data();
    void stopEndsTheDownload();
    void stopEndsConnecting();
    void stopBeforeTheStartAndAfterTheEndReturns();
};

void DownloadFileThreadTest::init()
{
    QDir(QDir::homePath() + "/Desktop/DCIM").removeRecursively();
}

void DownloadFileThreadTest::metaObjectHasTwoSignalsAndTwoSlots()
{
    const QMetaObject& metaObject = DownloadFileThread::staticMetaObject;
    QCOMPARE(metaObject.superClass(), &QThread::staticMetaObject);
    QCOMPARE(support::declaredMethods(metaObject),
             QStringList({"signal void downloadFileFinished()",
                          "signal void updateDownloadFileProgress(qlonglong, qlonglong)",
                          "slot void DownloadFile(QString fileName)",
                          "slot resp_header get_resp_header(char* response)"}));
    QCOMPARE(metaObject.indexOfSignal("updateDownloadFileProgress(qint64,qint64)"),
             metaObject.methodOffset() + 1);
}

void DownloadFileThreadTest::newThreadKnowsTheCard()
{
    const Download download("");
    QCOMPARE(download.thread.urlPrefix, QString("http://192.168.1.120/sd/DCIM/100ZEPNA/"));
    QCOMPARE(download.thread.fileName, QString());
    QCOMPARE(describe(download.thread.respHeader), QByteArray());
}

void DownloadFileThreadTest::constructionAndDestructionAreLogged()
{
    const support::LogCapture log;
    {
        QObject parent;
        auto* thread = new DownloadFileThread(&parent);
        QCOMPARE(thread->parent(), &parent);
        QCOMPARE(log.lines(), QStringList("DownloadFileThread build"));
    }
    QCOMPARE(log.lines(), QStringList({"DownloadFileThread build", "DownloadFileThread ~"}));
}

void DownloadFileThreadTest::requestNamesTheRecordingAndTheCamera_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("target");
    const auto row = [](const char* title, const QString& name, const QByteArray& target) {
        QTest::newRow(title) << name << target;
    };
    row("recording", "2021_0101_000000_01.mp4", "2021_0101_000000_01.mp4");
    row("space and percent", "a b%20c", "a b%20c");
    row("Latin-1 letter", QString::fromUtf8("é.mp4"), "\xE9.mp4");
    row("other letter", QString::fromUtf8("桌.mp4"), "?.mp4");
    row("3,000 characters", QString(3000, 'n'), QByteArray(3000, 'n'));
    row("empty", "", "");
    row("a file above", "../precious", "../precious");
    row("an absolute path", "/tmp/evil", "/tmp/evil");
    row("zero byte", QString::fromLatin1("evil\0.mp4", 9), "evil");
    row("zero byte at the end", QString::fromLatin1("../precious\0", 12), "../precious");
}

void DownloadFileThreadTest::requestNamesTheRecordingAndTheCamera()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, target);
    const Camera camera("HTTP/1.1 404 Not Found\r\n\r\n");
    Download download(name);
    QVERIFY(download.run());
    const QByteArray start = "GET " + urlPrefix + target + " HTTP/1.1\r\nAccept:";
    const QByteArray end = "\r\nHost:192.168.1.120\r\nConnection:close\r\n\r\n";
    QCOMPARE(camera.received(0).left(start.size()), start);
    QCOMPARE(camera.received(0).right(end.size()), end);
    QCOMPARE(camera.connectionCount(), 1);
}

void DownloadFileThreadTest::recordingArrivesByteForByte()
{
    const QByteArray body = pattern(1000003);
    const Camera camera(answerOf(body));
    Download download("a.mp4");
    QVERIFY(download.run());
    QVERIFY(contentOf("a.mp4") == body);
    QVERIFY(!download.recorder.received.isEmpty());
    QCOMPARE(download.recorder.received.last(), qint64{1000003});
    QCOMPARE(download.recorder.announced.count(1000003), download.recorder.announced.size());
    QCOMPARE(download.output.text(), QByteArray());
    QCOMPARE(camera.errors(), QStringList());
}

void DownloadFileThreadTest::refusedConnectionStillFinishes_data()
{
    QTest::addColumn<bool>("ownThread");
    QTest::newRow("in its own thread") << true;
    QTest::newRow("in the calling thread") << false;
}

void DownloadFileThreadTest::refusedConnectionStillFinishes()
{
    QFETCH(bool, ownThread);
    const support::DeadlyPipeSignal deadly; // the request is written to the refused connection
    Download download("a.mp4");
    if (ownThread) {
        QVERIFY(download.run());
    } else {
        download.thread.DownloadFile("a.mp4");
    }
    QCOMPARE(download.recorder.finished, 1);
    QCOMPARE(download.recorder.received, QList<qint64>());
    QCOMPARE(download.output.text(), QByteArray("connect failed, return: -1\n"));
    QCOMPARE(contentOf("a.mp4"), QByteArray(""));
}

void DownloadFileThreadTest::downloadWithoutADescriptorStillFinishes()
{
    const Camera camera(answerOf("abc"));
    Download download("none.mp4");
    {
        const support::NoDescriptorsLeft limit;
        download.thread.DownloadFile("none.mp4");
    }
    QCOMPARE(download.recorder.finished, 1);
    QCOMPARE(download.recorder.received, QList<qint64>());
    QCOMPARE(download.output.text(), QByteArray("invalid socket descriptor: -1\n"
                                                "connect failed, return: -1\n"
                                                "Create file failed\n"));
    QCOMPARE(camera.connectionCount(), 0);
}

void DownloadFileThreadTest::failureIsPrintedWhileTheDownloadGoesOn()
{
    std::atomic<bool> goOn{false};
    const Camera camera([&](Peer& peer) {
        peer.receiveUntil(Camera::requestEnd);
        peer.send("Content-Length: 3\r\n\r\n");
        peer.waitUntil([&] { return goOn.load(); });
        peer.send("abc");
    });
    Download download("..");
    download.start();
    QVERIFY(download.output.waitFor("Create file failed\n"));
    QCOMPARE(download.recorder.finished, 0);
    goOn = true;
    QVERIFY(download.waitUntilFinished());
    QCOMPARE(download.recorder.received, QList<qint64>({3}));
}

void DownloadFileThreadTest::socketAndFileStayOpenUntilTheObjectEnds()
{
    const Camera camera([](Peer& peer) {
        peer.receiveUntil(Camera::requestEnd);
        peer.send(answerOf("abc"));
        peer.halfClose();
        peer.holdOpen();
    });
    const QByteArray path = localPath("a.mp4").toUtf8();
    {
        Download download("a.mp4");
        QVERIFY(download.run());
        QCOMPARE(support::socketsConnectedTo(Camera::address, Camera::port), 1);
        QCOMPARE(support::descriptorsOn(path), 1);
    }
    QCOMPARE(support::socketsConnectedTo(Camera::address, Camera::port), 0);
    QCOMPARE(support::descriptorsOn(path), 0);
}

void DownloadFileThreadTest::downloadFileWorksInTheCallingThread()
{
    const Camera camera(answerOf("abc"));
    Download download("member.mp4");
    QVERIFY(QMetaObject::invokeMethod(&download.thread, "DownloadFile", Qt::DirectConnection,
                                      Q_ARG(QString, "argument.mp4")));
    QVERIFY(!download.thread.isRunning());
    QCOMPARE(download.recorder.finished, 1);
    QCOMPARE(contentOf("argument.mp4"), QByteArray("abc"));
    QCOMPARE(contentOf("member.mp4"), QByteArray("no such file"));
    QVERIFY(camera.received(0).startsWith("GET " + urlPrefix + "argument.mp4 "));
}

void DownloadFileThreadTest::slotOfTheLastSignalMayDeleteTheObject()
{
    const support::StdoutCapture output;
    auto thread = std::make_unique<DownloadFileThread>(nullptr);
    DownloadFileThread& downloading = *thread;
    QObject::connect(
        &downloading, &DownloadFileThread::downloadFileFinished, this,
        [&thread] { thread.reset(); }, Qt::DirectConnection);
    downloading.DownloadFile("a.mp4");
    QVERIFY(!thread);
}

void DownloadFileThreadTest::overlappingCallsEachFillTheirOwnFile()
{
    std::atomic<bool> secondIsOver{false};
    const Camera camera({[&](Peer& peer) {
                             peer.receiveUntil(Camera::requestEnd);
                             peer.send("Content-Length: 8\r\n\r\n1234");
                             peer.waitUntil([&] { return secondIsOver.load(); });
                             peer.send("5678");
                         },
                         Camera::sending("HTTP/1.1 404 \r\nContent-Length: 3\r\n\r\nabc")});
    Download download("first.mp4");
    download.start();
    QTRY_COMPARE(contentOf("first.mp4"), QByteArray("1234"));
    download.thread.DownloadFile("second.mp4");
    QCOMPARE(contentOf("second.mp4"), QByteArray("abc"));
    QCOMPARE(describe(download.thread.respHeader), QByteArray("status=404 length=3"));
    secondIsOver = true;
    QTRY_COMPARE(download.recorder.finished, 2);
    QCOMPARE(contentOf("first.mp4"), QByteArray("12345678"));
    QCOMPARE(contentOf("second.mp4"), QByteArray("abc"));
    QCOMPARE(download.output.text(), QByteArray());
}

void DownloadFileThreadTest::destructionEndsEveryCall()
{
    const Camera camera([](Peer& peer) { peer.holdOpen(); });
    auto download = std::make_unique<Download>("first.mp4");
    const std::unique_ptr<QThread> caller = callerOf(download->thread, "second.mp4");
    download->start();
    QVERIFY(camera.waitForReceived(0, Camera::requestEnd));
    caller->start();
    QVERIFY(camera.waitForReceived(1, Camera::requestEnd));
    const QString delay = delayOf([&] { download.reset(); });
    QVERIFY(caller->wait(5000));
    QCOMPARE(delay, QString());
}

void DownloadFileThreadTest::destructionWaitsForTheSlotsOfTheLastSignal()
{
    const Camera camera(answerOf("abc"));
    auto download = std::make_unique<Download>("");
    std::atomic<bool> entered{false};
    std::atomic<bool> left{false};
    QObject::connect(
        &download->thread, &DownloadFileThread::downloadFileFinished, &download->thread,
        [&] {
            entered = true;
            QThread::msleep(50); // gives the destructor time to start waiting
            left = true;
        },
        Qt::DirectConnection);
    const std::unique_ptr<QThread> caller = callerOf(download->thread, "a.mp4");
    caller->start();
    const bool signalled = QTest::qWaitFor([&] { return entered.load(); });
    download.reset();
    const bool leftThen = left;
    QVERIFY(caller->wait(5000));
    QVERIFY(signalled);
    QVERIFY2(leftThen, "the object was destroyed while DownloadFile() was still running");
}

void DownloadFileThreadTest::slotOfTheLastSignalMayStopTheThread()
{
    const Camera camera(answerOf("abc"));
    Download download("a.mp4");
    std::atomic<bool> stopped{false};
    QObject::connect(
        &download.thread, &DownloadFileThread::downloadFileFinished, &download.thread,
        [&] {
            download.thread.stopAndWait();
            stopped = true;
        },
        Qt::DirectConnection);
    QVERIFY(download.run());
    QVERIFY(stopped);
    QCOMPARE(contentOf("a.mp4"), QByteArray("abc"));
}

void DownloadFileThreadTest::headIsParsedThroughTheMetaObject()
{
    Download download("");
    char head[] = "HTTP/1.1 206 Partial\r\nContent-Type: a/b c\r\nContent-Length: 77\r\n\r\n";
    resp_header header;
    QVERIFY(QMetaObject::invokeMethod(&download.thread, "get_resp_header", Qt::DirectConnection,
                                      Q_RETURN_ARG(resp_header, header), Q_ARG(char*, head)));
    QCOMPARE(describe(header), QByteArray("status=206 type=a/b length=77"));
}

void DownloadFileThreadTest::stopEndsTheDownload_data()
{
    QTest::addColumn<QByteArray>("sent");
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n";
    QTest::newRow("waiting for the head") << QByteArray();
    QTest::newRow("within the head") << head.left(22);
    QTest::newRow("waiting for the body") << head;
    QTest::newRow("within the body") << head + "12";
    QTest::newRow("after the body, the connection still open") << head + "1234";
}

void DownloadFileThreadTest::stopEndsTheDownload()
{
    QFETCH(QByteArray, sent);
    const Camera camera([&sent](Peer& peer) {
        peer.receiveUntil(Camera::requestEnd);
        peer.send(sent);
        peer.holdOpen();
    });
    Download download("a.mp4");
    const support::SleepWatch watch(download.thread);
    download.start();
    QVERIFY(camera.waitForReceived(0, Camera::requestEnd));
    QVERIFY(watch.waitUntilAsleep());
    QCOMPARE(delayOf([&] { download.thread.stopAndWait(); }), QString());
    QVERIFY(download.thread.isFinished());
}

void DownloadFileThreadTest::stopEndsConnecting()
{
    const support::SilentAddress silent(Camera::address, Camera::port);
    Download download("a.mp4");
    const support::SleepWatch watch(download.thread);
    download.start();
    QVERIFY(watch.waitUntilAsleep());
    QCOMPARE(delayOf([&] { download.thread.stopAndWait(); }), QString());
    QVERIFY(download.thread.isFinished());
}

void DownloadFileThreadTest::stopBeforeTheStartAndAfterTheEndReturns()
{
    Download unstarted("a.mp4");
    QCOMPARE(delayOf([&] { unstarted.thread.stopAndWait(); }), QString());
    QVERIFY(!unstarted.thread.isRunning());
    QVERIFY(!unstarted.thread.isFinished());
    const Camera camera(answerOf("abc"));
    Download ended("a.mp4");
    QVERIFY(ended.run());
    QCOMPARE(delayOf([&] { ended.thread.stopAndWait(); }), QString());
    QVERIFY(ended.thread.isFinished());
}

BELUN_NETWORK_TEST(DownloadFileThreadTest)
#include "DownloadFileThreadTest.moc"
