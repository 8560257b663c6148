// Downloads from the window, with scripted devices at their real addresses.
#include "tests/app/Scene.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TestMain.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QList>
#include <QSignalSpy>
#include <QTimer>

namespace {

QByteArray downloadHead(const QByteArray& name)
{
    return "GET http://192.168.1.120/sd/DCIM/100ZEPNA/" + name +
           " HTTP/1.1\r\n"
           "Accept:text/html,application/xhtml+xml,application/xml;q=0.9,image/webp,*/*;q=0.8\r\n"
           "User-Agent:Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/537(KHTML, like Gecko) "
           "Chrome/47.0.2526Safari/537.36\r\n"
           "Host:192.168.1.120\r\n"
           "Connection:close\r\n"
           "\r\n";
}

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files);
}

} // namespace

class DownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutALinkNothingHappens();
    void withoutASelectionNothingHappens();
    void requestIsTheLiteralOne_data();
    void requestIsTheLiteralOne();
    void threeFilesGoOneAfterTheOther();
    void nextFileWaitsForTheEndOfTheOneBefore();
    void progressFollowsTheBytes();
    void barHasThePlatformsStyle();
    void eachFileStartsAtZero();
    void windowIsAliveDuringADownload();
    void labelKeepsItsLanguageUntilTheNextFile();
    void failedFileIsFollowedByTheNext_data();
    void failedFileIsFollowedByTheNext();
    void cameraSwitchedOffEndsEveryFile();
    void nameThatIsNoFileNameIsRequestedButNotWritten_data();
    void nameThatIsNoFileNameIsRequestedButNotWritten();
    void rowsGoneAfterABrowseAreSkipped();
    void noRowLeftEndsTheDownload();
    void rowWithoutAnItemIsSkippedAtTheStart();
    void onlyMissingItemsStartNothing();
    void secondDownloadKeepsTheTailOfALongerFile();
    void countsBeyondAnIntAreHarmless();
};

/// InterplayTest tests the button after a loss of the link.
void DownloadTest::withoutALinkNothingHappens()
{
    Scene scene;
    scene.camera->holdFiles(fiveFiles);
    scene.user.clickBrowse();
    const int before = scene.camera->connectionCount();
    scene.user.downloadRows({0, 1});
    QVERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->connectionCount(), before);
    QVERIFY(!QDir(recordingsFolder()).exists());
}

void DownloadTest::withoutASelectionNothingHappens()
{
    Scene scene(fiveFiles);
    const int before = scene.camera->connectionCount();
    scene.user.clickDownload();
    QVERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->connectionCount(), before);
}

void DownloadTest::requestIsTheLiteralOne_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("ordinary") << QByteArray("VID0001.mp4");
    QTest::newRow("unescaped") << QByteArray("my file & more %1%20%s.mp4");
}

void DownloadTest::requestIsTheLiteralOne()
{
    QFETCH(QByteArray, name);
    Scene scene({name});
    scene.camera->answer(downloadOf(name), "bytes");
    scene.user.downloadRows({0});
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->heads(), Texts{downloadHead(name)});
    QCOMPARE(recording(name), QByteArray("bytes"));
}

void DownloadTest::threeFilesGoOneAfterTheOther()
{
    const Texts names{"e.mp4", "c.mp4", "b.mp4"};
    const QByteArray end(9000, 'x');
    Scene scene(fiveFiles);
    for (const QByteArray& name : names) {
        scene.sendInParts(name, {"", fake::withLength(name + end)});
    }
    scene.user.downloadRows({1, 4, 2});
    Texts requests;
    for (const QByteArray& name : names) {
        requests.append(downloadHead(name));
        QTRY_VERIFY(scene.gate(name).isReached());
        QCOMPARE(scene.user.downloadCount(), QStringLiteral("%1/3").arg(requests.size()));
        QCOMPARE(scene.user.downloadLabel(), support::windowText("progress").english);
        QVERIFY(scene.user.progressBar().isVisible());
        QVERIFY(!scene.user.canDownload());
        scene.user.clickDownload(); // no effect, because the button is disabled
        QCOMPARE(scene.camera->heads(), requests);
        scene.gate(name).open();
    }
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->heads(), requests);
    for (const QByteArray& name : names) {
        QCOMPARE(recording(name), name + end);
    }
    QCOMPARE(filesIn(recordingsFolder()), (QStringList{"b.mp4", "c.mp4", "e.mp4"}));
}

void DownloadTest::nextFileWaitsForTheEndOfTheOneBefore()
{
    Scene scene(fiveFiles);
    // After the whole recording, the connection stays open, and the thread waits in one more
    // receive.
    scene.sendInParts("b.mp4", {fake::withLength("the whole recording"), ""});
    scene.camera->answer(downloadOf("a.mp4"), "second");
    const int before = scene.camera->connectionCount();
    scene.user.downloadRows({0, 1});
    QTRY_COMPARE(scene.user.progressBar().value(), 19);
    QTRY_COMPARE(recording("b.mp4"), QByteArray("the whole recording"));
    QCOMPARE(scene.user.downloadCount(), QString("1/2"));
    QVERIFY(!scene.user.canDownload());
    QCOMPARE(scene.camera->connectionCount(), before + 1);
    QCOMPARE(scene.user.window().findChildren<QThread*>().size(), 3);
    scene.gate("b.mp4").open();
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->connectionCount(), before + 2);
    QCOMPARE(recording("a.mp4"), QByteArray("second"));
}

void DownloadTest::progressFollowsTheBytes()
{
    const QByteArray bytes = QByteArray(1000, 'a') + QByteArray(2000, 'b') + QByteArray(1000, 'c');
    Scene scene({"a.mp4"});
    scene.sendInParts("a.mp4", {"", fake::withLength(bytes).chopped(3000), bytes.mid(1000, 2000),
                                bytes.mid(3000)});
    scene.user.downloadRows({0});
    QTRY_VERIFY(scene.gate("a.mp4").isReached());
    QCOMPARE(scene.user.progressBar().value(), 0);
    QVERIFY(scene.user.progressBar().isVisible());
    scene.gate("a.mp4").open();
    QTRY_COMPARE(scene.user.progressBar().value(), 1000);
    QCOMPARE(scene.user.progressBar().maximum(), 4000);
    QCOMPARE(scene.user.progressBar().text(), QString("25%"));
    scene.gate("a.mp4", 1).open();
    QTRY_COMPARE(scene.user.progressBar().value(), 3000);
    QCOMPARE(scene.user.progressBar().text(), QString("75%"));
    scene.gate("a.mp4", 2).open();
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(recording("a.mp4"), bytes);
}

void DownloadTest::barHasThePlatformsStyle()
{
    Scene scene({"a.mp4"});
    scene.downloadUntilStalled({0}, "a.mp4");
    scene.finishDownload("a.mp4");
    QVERIFY(!scene.user.progressBar().testAttribute(Qt::WA_SetStyle));
    QCOMPARE(scene.user.progressBar().style(), QApplication::style());
}

void DownloadTest::eachFileStartsAtZero()
{
    Scene scene({"a.mp4", "b.mp4"});
    scene.camera->answer(downloadOf("b.mp4"), QByteArray(5000, 'b'));
    scene.sendInParts("a.mp4", {"", fake::withLength("a")});
    scene.user.downloadRows({0, 1});
    QTRY_VERIFY(scene.gate("a.mp4").isReached());
    QTRY_COMPARE(scene.user.downloadCount(), QString("2/2"));
    QCOMPARE(scene.user.progressBar().value(), 0);
    scene.gate("a.mp4").open();
    QTRY_VERIFY(scene.user.isIdle());
}

void DownloadTest::windowIsAliveDuringADownload()
{
    Scene scene(fiveFiles);
    scene.downloadUntilStalled({0}, "a.mp4");
    QTimer timer;
    QSignalSpy ticks(&timer, &QTimer::timeout);
    timer.start(1);
    QTRY_VERIFY(ticks.count() >= 20);
    scene.user.chooseChinese();
    QCOMPARE(scene.user.button("pushButtonDownloadFile").text(),
             support::windowText("download").chinese);
    scene.user.toggleSelectAll();
    QCOMPARE(scene.user.table().selectionModel()->selectedRows().size(), 5);
    scene.exchangeHeartbeat();
    QTRY_COMPARE(scene.user.status(), support::windowText("linked").chinese);
    QVERIFY(!scene.user.canDownload());
    scene.finishDownload("a.mp4");
}

void DownloadTest::labelKeepsItsLanguageUntilTheNextFile()
{
    const support::WindowText& label = support::windowText("progress");
    Scene scene({"a.mp4", "b.mp4"});
    scene.stall("a.mp4");
    scene.downloadUntilStalled({0, 1}, "b.mp4");
    scene.user.chooseChinese();
    QCOMPARE(scene.user.downloadLabel(), label.english);
    scene.gate("b.mp4").open();
    QTRY_COMPARE(scene.user.downloadLabel(), label.chinese);
    QCOMPARE(scene.user.downloadCount(), QString("2/2"));
    scene.user.chooseEnglish();
    QCOMPARE(scene.user.downloadLabel(), label.chinese);
    scene.gate("a.mp4").open();
    QTRY_VERIFY(scene.user.isIdle());
}

void DownloadTest::failedFileIsFollowedByTheNext_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("content");
    const auto row = [](const char* name, const char* answer, const char* content) {
        QTest::newRow(name) << QByteArray(answer) << QByteArray(content);
    };
    row("closed without an answer", "", "");
    row("closed in the body", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf", "half");
    row("the page of a 404", "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nnone", "none");
}

void DownloadTest::failedFileIsFollowedByTheNext()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, content);
    Scene scene({"a.mp4", "b.mp4"});
    scene.camera->answer(downloadOf("a.mp4"), "good");
    scene.camera->answerRaw(downloadOf("b.mp4"), answer);
    scene.user.downloadRows({0, 1});
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->targets(), (Texts{downloadOf("b.mp4"), downloadOf("a.mp4")}));
    QCOMPARE(recording("b.mp4"), content);
    QCOMPARE(recording("a.mp4"), QByteArray("good"));
}

void DownloadTest::cameraSwitchedOffEndsEveryFile()
{
    Scene scene({"a.mp4", "b.mp4"});
    scene.camera.reset();
    const support::StdoutCapture output;
    scene.user.downloadRows({0, 1});
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(output.text(), QByteArray("connect failed, return: -1\nconnect failed, return: -1\n"));
}

void DownloadTest::nameThatIsNoFileNameIsRequestedButNotWritten_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("empty name") << QByteArray();
    QTest::newRow("path out of the folder") << QByteArray("../stray.mp4");
}

void DownloadTest::nameThatIsNoFileNameIsRequestedButNotWritten()
{
    QFETCH(QByteArray, name);
    Scene scene({name});
    QCOMPARE(scene.user.row(0).first(), QString(name));
    scene.sendInParts(name, {fake::withLength("abcdef").chopped(3), "def"});
    const support::StdoutCapture output;
    scene.user.downloadRows({0});
    QTRY_COMPARE(scene.user.progressBar().value(), 3);
    QCOMPARE(scene.user.downloadCount(), QString("1/1"));
    scene.gate(name).open();
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->heads(), Texts{downloadHead(name)});
    QCOMPARE(output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(filesIn(recordingsFolder()) + filesIn(recordingsFolder() + "/.."), QStringList());
}

void DownloadTest::rowsGoneAfterABrowseAreSkipped()
{
    Scene scene(fiveFiles);
    scene.downloadUntilStalled({0, 2, 4}, "e.mp4");
    scene.stall("new.mp4");
    scene.camera->holdFiles({"new.mp4"});
    scene.user.clickBrowse();
    QCOMPARE(scene.user.names(), QStringList{"new.mp4"});
    scene.camera->forgetRequests();
    scene.gate("e.mp4").open();
    QTRY_VERIFY(scene.gate("new.mp4").isReached());
    QCOMPARE(scene.user.downloadCount(), QString("3/3"));
    QVERIFY(!scene.user.canDownload());
    QCOMPARE(scene.camera->targets(), Texts{downloadOf("new.mp4")});
    scene.finishDownload("new.mp4");
}

void DownloadTest::noRowLeftEndsTheDownload()
{
    Scene scene(fiveFiles);
    scene.downloadUntilStalled({0, 2, 4}, "e.mp4");
    scene.camera->holdFiles({});
    scene.user.clickBrowse();
    QCOMPARE(scene.user.table().rowCount(), 0);
    scene.camera->forgetRequests();
    scene.gate("e.mp4").open();
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->targets(), Texts());
    QCOMPARE(recording("e.mp4"), QByteArray("from e.mp4"));
}

void DownloadTest::rowWithoutAnItemIsSkippedAtTheStart()
{
    Scene scene({"a.mp4", "b.mp4"});
    scene.stall("a.mp4");
    scene.user.chooseRows({0, 1});
    delete scene.user.table().takeItem(1, 0);
    scene.user.clickDownload();
    QTRY_VERIFY(scene.gate("a.mp4").isReached());
    QCOMPARE(scene.user.downloadCount(), QString("2/2"));
    scene.gate("a.mp4").open();
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->targets(), Texts{downloadOf("a.mp4")});
}

void DownloadTest::onlyMissingItemsStartNothing()
{
    Scene scene({"a.mp4"});
    const int before = scene.camera->connectionCount();
    scene.user.chooseRows({0});
    delete scene.user.table().takeItem(0, 0);
    scene.user.clickDownload();
    QVERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->connectionCount(), before);
}

void DownloadTest::secondDownloadKeepsTheTailOfALongerFile()
{
    Scene scene({"a.mp4"});
    for (const char* bytes : {"0123456789", "abcd"}) {
        scene.camera->answer(downloadOf("a.mp4"), bytes);
        scene.user.downloadRows({0});
        QTRY_VERIFY(scene.user.isIdle());
    }
    QCOMPARE(scene.camera->heads().size(), 2);
    QCOMPARE(recording("a.mp4"), QByteArray("abcd456789"));
}

void DownloadTest::countsBeyondAnIntAreHarmless()
{
    const UserWindow user;
    user.probe().call("updateDownloadFileProgress", Q_ARG(qint64, 4294967301),
                      Q_ARG(qint64, 4294967396));
    QCOMPARE(user.progressBar().maximum(), 100);
    QCOMPARE(user.progressBar().value(), 5);
    user.probe().call("updateDownloadFileProgress", Q_ARG(qint64, 3000000000),
                      Q_ARG(qint64, 3000000000));
    QVERIFY(user.progressBar().maximum() < 100);
}

BELUN_NETWORK_TEST(DownloadTest)
#include "DownloadTest.moc"
