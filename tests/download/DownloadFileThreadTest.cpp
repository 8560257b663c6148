// The download thread and its exchange with the camera.
#include "download/DownloadFileThread.h"

#include "tests/download/DownloadRecorder.h"
#include "tests/kit/MetaMethods.h"
#include "tests/kit/NoDescriptorsLeft.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/PipeSignal.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"

#include <atomic>
#include <csignal>
#include <memory>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMetaObject>
#include <QThread>

using support::Peer;
using support::ScriptedServer;
using Script = ScriptedServer::Script;

namespace {

constexpr char address[] = "192.168.1.120";
constexpr quint16 port = 80;
const int stopLimit = 500 * support::timeFactor(); // milliseconds
const QByteArray requestEnd = "Connection:close\r\n\r\n";

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

/// Returns a script that receives the request, sends these bytes and closes the connection.
Script answerWith(const QByteArray& bytes)
{
    return [bytes](Peer& peer) {
        peer.receiveUntil(requestEnd);
        peer.send(bytes);
    };
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
    void requestIsExact_data();
    void requestIsExact();
    void requestOver2048BytesIsSentWhole();
    void recordingArrivesByteForByte();
    void headInSingleBytesIsRead();
    void headThatEndsInLfLfCrLfIsRead();
    void bodyThatBeginsWithLineEndsKeepsThem();
    void zeroBytesInAHeadAreLeftOut();
    void headCutByTheCameraIsReadAsFarAsReceived();
    void statusIsNotExamined();
    void bodyIsReadIn4096BytesWithOneSignalEach();
    void everyReceiveGivesOneSignal();
    void bodyLongerThanAnnouncedIsDroppedFromTheNextReceiveOn();
    void bodyShorterThanAnnouncedLeavesAShorterFile();
    void answerWithoutALengthSavesNoBody();
    void refusedConnectionStillFinishes();
    void downloadWithoutADescriptorStillFinishes();
    void resetInTheHeadStillFinishes();
    void resetInTheBodyKeepsWhatWasReceived();
    void failureIsPrintedWhileTheDownloadGoesOn();
    void socketAndFileStayOpenUntilTheObjectEnds();
    void downloadFileWorksInTheCallingThread();
    void refusedDownloadInTheCallingThreadRaisesNoSignal();
    void slotOfTheLastSignalMayDeleteTheObject();
    void overlappingCallsEachFillTheirOwnFile();
    void destructionEndsEveryCall();
    void destructionWaitsForTheSlotsOfTheLastSignal();
    void slotOfTheLastSignalMayStopTheThread();
    void headIsParsedThroughTheMetaObject();
    void stopEndsTheDownload_data();
    void stopEndsTheDownload();
    void destructionEndsTheDownload();
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
    QCOMPARE(download.thread.urlPrefix.size(), 38);
    QCOMPARE(download.thread.fileName, QString());
    QCOMPARE(int{download.thread.respHeader.status_code}, 0);
    QCOMPARE(qint64{download.thread.respHeader.content_length}, qint64{0});
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

void DownloadFileThreadTest::requestIsExact_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("recording") << "2021_0101_000000_01.mp4"
                               << QByteArray("2021_0101_000000_01.mp4");
    QTest::newRow("space and percent") << "a b%20c" << QByteArray("a b%20c");
    QTest::newRow("Latin-1 letter") << QString::fromUtf8("é.mp4") << QByteArray("\xE9.mp4");
    QTest::newRow("other letter") << QString::fromUtf8("桌.mp4") << QByteArray("?.mp4");
}

void DownloadFileThreadTest::requestIsExact()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, target);
    ScriptedServer server(answerWith("HTTP/1.1 404 Not Found\r\n\r\n"), address, port);
    Download download(name);
    QVERIFY(download.run());
    QCOMPARE(server.received(0),
             "GET http://192.168.1.120/sd/DCIM/100ZEPNA/" + target +
                 " HTTP/1.1\r\n"
                 "Accept:text/html,application/xhtml+xml,application/xml;q=0.9,image/webp,"
                 "*/*;q=0.8\r\n"
                 "User-Agent:Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/537(KHTML, like "
                 "Gecko) Chrome/47.0.2526Safari/537.36\r\n"
                 "Host:192.168.1.120\r\n"
                 "Connection:close\r\n"
                 "\r\n");
    QCOMPARE(server.connectionCount(), 1);
}

void DownloadFileThreadTest::requestOver2048BytesIsSentWhole()
{
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc"), address,
                          port);
    const QByteArray name(3000, 'n');
    Download download(QString::fromLatin1(name));
    QVERIFY(download.run());
    const QByteArray request = server.received(0);
    QVERIFY(request.startsWith("GET http://192.168.1.120/sd/DCIM/100ZEPNA/" + name +
                               " HTTP/1.1\r\nAccept:"));
    QVERIFY(request.endsWith("\r\nHost:192.168.1.120\r\nConnection:close\r\n\r\n"));
    QCOMPARE(download.recorder.received, QList<qint64>({3}));
    QCOMPARE(download.output.text(),
             QByteArray("Create file failed\n")); // the file system allows no such long name
}

void DownloadFileThreadTest::recordingArrivesByteForByte()
{
    const QByteArray body = pattern(1000003);
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 1000003\r\n\r\n" + body),
                          address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QVERIFY(contentOf("a.mp4") == body);
    QCOMPARE(download.recorder.received.last(), qint64{1000003});
    QCOMPARE(download.recorder.announced.count(1000003), download.recorder.announced.size());
    QCOMPARE(download.recorder.finished, 1);
    QCOMPARE(download.recorder.progressAfterFinished, 0);
    QCOMPARE(download.output.text(), QByteArray());
    QCOMPARE(server.errors(), QStringList());
}

void DownloadFileThreadTest::headInSingleBytesIsRead()
{
    ScriptedServer server(Script([](Peer& peer) {
                              peer.receiveUntil(requestEnd);
                              peer.sendBytewise("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nabcd");
                          }),
                          address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("a.mp4"), QByteArray("abcd"));
    QCOMPARE(download.recorder.received, QList<qint64>({1, 2, 3, 4}));
    QCOMPARE(int{download.thread.respHeader.status_code}, 200);
}

void DownloadFileThreadTest::headThatEndsInLfLfCrLfIsRead()
{
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 4\n\n\r\nabcd"), address,
                          port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("a.mp4"), QByteArray("abcd"));
}

void DownloadFileThreadTest::bodyThatBeginsWithLineEndsKeepsThem()
{
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\n\r\n\r\nab"),
                          address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("a.mp4"), QByteArray("\r\n\r\nab"));
}

void DownloadFileThreadTest::zeroBytesInAHeadAreLeftOut()
{
    QByteArray head = "HTTP/1.1 200 OK\r\nContent-Len#gth: 4\r\n\r#\n";
    head.replace('#', '\0');
    ScriptedServer server(answerWith(head + "abcd"), address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("a.mp4"), QByteArray("abcd"));
}

void DownloadFileThreadTest::headCutByTheCameraIsReadAsFarAsReceived()
{
    ScriptedServer server(
        answerWith("HTTP/1.1 200 OK\r\nContent-Type: video/mp4\r\nContent-Length: 5\r\n"), address,
        port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(int{download.thread.respHeader.status_code}, 200);
    QCOMPARE(QByteArray(download.thread.respHeader.content_type), QByteArray("video/mp4"));
    QCOMPARE(qint64{download.thread.respHeader.content_length}, qint64{5});
    QCOMPARE(contentOf("a.mp4"), QByteArray(""));
    QCOMPARE(download.recorder.received, QList<qint64>());
}

void DownloadFileThreadTest::statusIsNotExamined()
{
    ScriptedServer server(
        answerWith("HTTP/1.1 404 Not Found\r\nContent-Length: 9\r\n\r\nnot found"), address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(int{download.thread.respHeader.status_code}, 404);
    QCOMPARE(contentOf("a.mp4"), QByteArray("not found"));
}

void DownloadFileThreadTest::bodyIsReadIn4096BytesWithOneSignalEach()
{
    ScriptedServer server(
        answerWith("HTTP/1.1 200 OK\r\nContent-Length: 10000\r\n\r\n" + pattern(10000)), address,
        port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.recorder.received, QList<qint64>({4096, 8192, 10000}));
    QCOMPARE(download.recorder.announced, QList<qint64>({10000, 10000, 10000}));
}

void DownloadFileThreadTest::everyReceiveGivesOneSignal()
{
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 4299\r\n\r\n";
    const int begin = static_cast<int>(head.size());
    ScriptedServer server(
        Script([&](Peer& peer) {
            peer.receiveUntil(requestEnd);
            peer.sendInPieces(head + pattern(4299), {begin, begin + 1, begin + 101, begin + 4197});
        }),
        address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.recorder.received, QList<qint64>({1, 101, 4197, 4299}));
    QCOMPARE(contentOf("a.mp4"), pattern(4299));
}

void DownloadFileThreadTest::bodyLongerThanAnnouncedIsDroppedFromTheNextReceiveOn()
{
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n";
    const int begin = static_cast<int>(head.size());
    ScriptedServer server(Script([&](Peer& peer) {
                              peer.receiveUntil(requestEnd);
                              peer.sendInPieces(head + "123456789012dropped", {begin, begin + 12});
                              peer.holdOpen();
                          }),
                          address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("a.mp4"), QByteArray("123456789012"));
    QCOMPARE(download.recorder.received, QList<qint64>({12}));
    QCOMPARE(download.recorder.announced, QList<qint64>({10}));
}

void DownloadFileThreadTest::bodyShorterThanAnnouncedLeavesAShorterFile()
{
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n123"), address,
                          port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("a.mp4"), QByteArray("123"));
    QCOMPARE(download.recorder.received, QList<qint64>({3}));
    QCOMPARE(download.recorder.finished, 1);
}

void DownloadFileThreadTest::answerWithoutALengthSavesNoBody()
{
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length:4\r\n\r\nabcd"), address,
                          port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("a.mp4"), QByteArray(""));
    QCOMPARE(download.recorder.received, QList<qint64>());
    QCOMPARE(download.recorder.finished, 1);
}

void DownloadFileThreadTest::refusedConnectionStillFinishes()
{
    const support::DeadlyPipeSignal deadly; // the request is written to the refused connection
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("connect failed, return: -1\n"));
    QCOMPARE(contentOf("a.mp4"), QByteArray(""));
    QCOMPARE(download.recorder.received, QList<qint64>());
    QCOMPARE(download.recorder.finished, 1);
}

void DownloadFileThreadTest::downloadWithoutADescriptorStillFinishes()
{
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc"), address,
                          port);
    Download download("none.mp4");
    {
        const support::NoDescriptorsLeft limit;
        download.thread.DownloadFile("none.mp4");
    }
    QTRY_COMPARE(download.recorder.finished, 1);
    QCOMPARE(download.recorder.received, QList<qint64>());
    QCOMPARE(download.output.text(), QByteArray("invalid socket descriptor: -1\n"
                                                "connect failed, return: -1\n"
                                                "Create file failed\n"));
    QCOMPARE(server.connectionCount(), 0);
}

void DownloadFileThreadTest::resetInTheHeadStillFinishes()
{
    ScriptedServer server(Script([](Peer& peer) {
                              peer.receiveUntil(requestEnd);
                              peer.send("HTTP/1.1 200 OK\r\nContent-Le");
                              peer.waitUntilRead();
                              peer.reset();
                          }),
                          address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(int{download.thread.respHeader.status_code}, 200);
    QCOMPARE(contentOf("a.mp4"), QByteArray(""));
    QCOMPARE(download.recorder.finished, 1);
}

void DownloadFileThreadTest::resetInTheBodyKeepsWhatWasReceived()
{
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n";
    ScriptedServer server(Script([&](Peer& peer) {
                              peer.receiveUntil(requestEnd);
                              peer.sendInPieces(head + "1234", {static_cast<int>(head.size())});
                              peer.reset();
                          }),
                          address, port);
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("a.mp4"), QByteArray("1234"));
    QCOMPARE(download.recorder.received, QList<qint64>({4, 3}));
    QCOMPARE(download.recorder.finished, 1);
}

void DownloadFileThreadTest::failureIsPrintedWhileTheDownloadGoesOn()
{
    std::atomic<bool> goOn{false};
    ScriptedServer server(Script([&](Peer& peer) {
                              peer.receiveUntil(requestEnd);
                              peer.send("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n");
                              peer.waitUntil([&] { return goOn.load(); });
                              peer.send("abc");
                          }),
                          address, port);
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
    ScriptedServer server(Script([](Peer& peer) {
                              peer.receiveUntil(requestEnd);
                              peer.send("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc");
                              peer.halfClose();
                              peer.holdOpen();
                          }),
                          address, port);
    const QByteArray path = localPath("a.mp4").toUtf8();
    {
        Download download("a.mp4");
        QVERIFY(download.run());
        QCOMPARE(support::socketsConnectedTo(address, port), 1);
        QCOMPARE(support::descriptorsOn(path), 1);
    }
    QCOMPARE(support::socketsConnectedTo(address, port), 0);
    QCOMPARE(support::descriptorsOn(path), 0);
}

void DownloadFileThreadTest::downloadFileWorksInTheCallingThread()
{
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc"), address,
                          port);
    Download download("member.mp4");
    QVERIFY(QMetaObject::invokeMethod(&download.thread, "DownloadFile", Qt::DirectConnection,
                                      Q_ARG(QString, "argument.mp4")));
    QVERIFY(!download.thread.isRunning());
    QCOMPARE(download.recorder.finished, 1);
    QCOMPARE(contentOf("argument.mp4"), QByteArray("abc"));
    QCOMPARE(contentOf("member.mp4"), QByteArray("no such file"));
    QVERIFY(
        server.received(0).startsWith("GET http://192.168.1.120/sd/DCIM/100ZEPNA/argument.mp4 "));
}

// Writing to a socket whose connection was refused raises SIGPIPE unless the thread blocks it.
void DownloadFileThreadTest::refusedDownloadInTheCallingThreadRaisesNoSignal()
{
    const auto before = std::signal(SIGPIPE, SIG_DFL);
    Download download("");
    download.thread.DownloadFile("a.mp4");
    std::signal(SIGPIPE, before);
    QCOMPARE(download.output.text(), QByteArray("connect failed, return: -1\n"));
    QCOMPARE(download.recorder.finished, 1);
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
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\n";
    ScriptedServer server({[&](Peer& peer) {
                               peer.receiveUntil(requestEnd);
                               peer.send(head + "1234");
                               peer.waitUntil([&] { return secondIsOver.load(); });
                               peer.send("5678");
                           },
                           answerWith("HTTP/1.1 404 Not Found\r\nContent-Length: 3\r\n\r\nabc")},
                          address, port);
    Download download("first.mp4");
    download.start();
    QTRY_COMPARE(contentOf("first.mp4"), QByteArray("1234"));
    download.thread.DownloadFile("second.mp4");
    QCOMPARE(contentOf("second.mp4"), QByteArray("abc"));
    QCOMPARE(int{download.thread.respHeader.status_code}, 404);
    secondIsOver = true;
    QTRY_COMPARE(download.recorder.finished, 2);
    QCOMPARE(contentOf("first.mp4"), QByteArray("12345678"));
    QCOMPARE(contentOf("second.mp4"), QByteArray("abc"));
    QCOMPARE(download.output.text(), QByteArray());
}

void DownloadFileThreadTest::destructionEndsEveryCall()
{
    ScriptedServer server(Script([](Peer& peer) { peer.holdOpen(); }), address, port);
    auto download = std::make_unique<Download>("first.mp4");
    DownloadFileThread& thread = download->thread;
    const std::unique_ptr<QThread> caller(
        QThread::create([&thread] { thread.DownloadFile("second.mp4"); }));
    download->start();
    QVERIFY(server.waitForReceived(0, requestEnd));
    caller->start();
    QVERIFY(server.waitForReceived(1, requestEnd));
    QElapsedTimer time;
    time.start();
    download.reset();
    const qint64 elapsed = time.elapsed();
    QVERIFY(caller->wait(5000));
    QVERIFY2(elapsed < stopLimit, qPrintable(QString::number(elapsed) + " ms"));
}

void DownloadFileThreadTest::destructionWaitsForTheSlotsOfTheLastSignal()
{
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc"), address,
                          port);
    auto download = std::make_unique<Download>("");
    DownloadFileThread& thread = download->thread;
    std::atomic<bool> entered{false};
    std::atomic<bool> left{false};
    QObject::connect(
        &thread, &DownloadFileThread::downloadFileFinished, &thread,
        [&] {
            entered = true;
            QThread::msleep(50); // gives the destructor time to start waiting
            left = true;
        },
        Qt::DirectConnection);
    const std::unique_ptr<QThread> caller(
        QThread::create([&thread] { thread.DownloadFile("a.mp4"); }));
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
    ScriptedServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc"), address,
                          port);
    Download download("a.mp4");
    std::atomic<bool> stopped{false};
    QObject::connect(
        &download.thread, &DownloadFileThread::downloadFileFinished, &download.thread,
        [&] {
            download.thread.stopAndWait();
            stopped = true;
        },
        Qt::DirectConnection);
    download.start();
    QTRY_VERIFY(stopped);
    QTRY_VERIFY(download.thread.isFinished());
    QCOMPARE(contentOf("a.mp4"), QByteArray("abc"));
}

void DownloadFileThreadTest::headIsParsedThroughTheMetaObject()
{
    Download download("");
    char head[] = "HTTP/1.1 206 Partial\r\nContent-Type: a/b c\r\nContent-Length: 77\r\n\r\n";
    resp_header header;
    QVERIFY(QMetaObject::invokeMethod(&download.thread, "get_resp_header", Qt::DirectConnection,
                                      Q_RETURN_ARG(resp_header, header), Q_ARG(char*, head)));
    QCOMPARE(int{header.status_code}, 206);
    QCOMPARE(QByteArray(header.content_type), QByteArray("a/b"));
    QCOMPARE(qint64{header.content_length}, qint64{77});
    QCOMPARE(QByteArray(header.file_name), QByteArray(""));
}

void DownloadFileThreadTest::stopEndsTheDownload_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("never started") << "new" << QByteArray();
    QTest::newRow("connecting to a silent address") << "silent" << QByteArray();
    QTest::newRow("waiting for the head") << "stalled" << QByteArray();
    QTest::newRow("within the head") << "stalled" << QByteArray("HTTP/1.1 200 OK\r\nConte");
    QTest::newRow("waiting for the body")
        << "stalled" << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n");
    QTest::newRow("within the body")
        << "stalled" << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n1234");
    QTest::newRow("after the body, the connection still open")
        << "stalled" << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n1234");
    QTest::newRow("over") << "over"
                          << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n1234");
}

void DownloadFileThreadTest::stopEndsTheDownload()
{
    QFETCH(QString, state);
    QFETCH(QByteArray, sent);
    std::unique_ptr<support::SilentAddress> silent;
    std::unique_ptr<ScriptedServer> server;
    if (state == "silent") {
        silent = std::make_unique<support::SilentAddress>(address, port);
    } else {
        server = std::make_unique<ScriptedServer>(Script([&](Peer& peer) {
                                                      peer.receiveUntil(requestEnd);
                                                      peer.send(sent);
                                                      if (state == "stalled") {
                                                          peer.holdOpen();
                                                      }
                                                  }),
                                                  address, port);
    }
    Download download("a.mp4");
    const support::SleepWatch watch(download.thread);
    if (state == "over") {
        QVERIFY(download.run());
    } else if (state != "new") {
        download.start();
        if (server) {
            QVERIFY(server->waitForReceived(0, requestEnd));
        }
        QVERIFY(watch.waitUntilAsleep());
    }
    QElapsedTimer time;
    time.start();
    download.thread.stopAndWait();
    QVERIFY2(time.elapsed() < stopLimit, qPrintable(QString::number(time.elapsed()) + " ms"));
    QVERIFY(!download.thread.isRunning());
    QCOMPARE(download.thread.isFinished(), state != "new");
}

void DownloadFileThreadTest::destructionEndsTheDownload()
{
    ScriptedServer server(Script([](Peer& peer) { peer.holdOpen(); }), address, port);
    QElapsedTimer time;
    {
        Download download("a.mp4");
        download.start();
        QVERIFY(server.waitForReceived(0, requestEnd));
        time.start();
    }
    QVERIFY2(time.elapsed() < stopLimit, qPrintable(QString::number(time.elapsed()) + " ms"));
}

BELUN_NETWORK_TEST(DownloadFileThreadTest)
#include "DownloadFileThreadTest.moc"
