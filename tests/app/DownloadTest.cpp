// Downloads from the window, with scripted devices at their real addresses.
#include "tests/kit/LinkedScene.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowTexts.h"

#include <array>
#include <memory>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QList>
#include <QSignalSpy>
#include <QTimer>

namespace {

using Texts = QList<QByteArray>;

QByteArray head(const QByteArray& name)
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

QByteArray target(const QByteArray& name)
{
    return fake::downloadTarget + name;
}

QString recordings()
{
    return QDir::homePath() + QStringLiteral("/Desktop/DCIM");
}

/// Returns the file downloaded under that name, or "no file".
QByteArray recording(const QString& name)
{
    QFile file(recordings() + QLatin1Char('/') + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

const Texts fiveFiles{"a.mp4", "b.mp4", "c.mp4", "d.mp4", "e.mp4"};

} // namespace

class DownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void withoutALinkNothingHappens();
    void afterALossNothingHappens();
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

private:
    std::unique_ptr<std::array<fake::Gate, 3>> gates; // outlive the camera that waits at them
    std::unique_ptr<LinkedScene> scene;
};

void DownloadTest::init()
{
    gates = std::make_unique<std::array<fake::Gate, 3>>();
    scene = std::make_unique<LinkedScene>();
}

void DownloadTest::cleanup()
{
    for (fake::Gate& gate : *gates) {
        gate.open();
    }
    if (scene->camera) {
        QCOMPARE(scene->camera->errors(), Texts());
    }
    scene.reset();
    QDir(recordings()).removeRecursively();
}

void DownloadTest::withoutALinkNothingHappens()
{
    scene->camera->holdFiles(fiveFiles);
    scene->user->clickBrowse();
    const int before = scene->camera->connectionCount();
    scene->user->chooseRows({0, 1});
    scene->user->clickDownload();
    QVERIFY(scene->user->isIdle());
    QCOMPARE(scene->camera->connectionCount(), before);
    QVERIFY(!QDir(recordings()).exists());
}

void DownloadTest::afterALossNothingHappens()
{
    scene->linkAndBrowse(fiveFiles);
    const int before = scene->camera->connectionCount();
    scene->control->link().close();
    QTRY_VERIFY(scene->user->showsLinkFail());
    scene->user->chooseRows({0, 1});
    scene->user->clickDownload();
    QVERIFY(scene->user->isIdle());
    QCOMPARE(scene->camera->connectionCount(), before);
}

void DownloadTest::withoutASelectionNothingHappens()
{
    scene->linkAndBrowse(fiveFiles);
    const int before = scene->camera->connectionCount();
    scene->user->clickDownload();
    QVERIFY(scene->user->isIdle());
    QCOMPARE(scene->camera->connectionCount(), before);
}

void DownloadTest::requestIsTheLiteralOne_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("ordinary") << QByteArray("VID0001.mp4");
    QTest::newRow("space and ampersand") << QByteArray("my file & more.mp4");
    QTest::newRow("percent signs and place marks") << QByteArray("%1%20%s.mp4");
}

void DownloadTest::requestIsTheLiteralOne()
{
    QFETCH(QByteArray, name);
    scene->linkAndBrowse({name});
    scene->camera->answer(target(""), "recording");
    scene->user->chooseRows({0});
    scene->user->clickDownload();
    QTRY_VERIFY(scene->user->isIdle());
    QCOMPARE(scene->camera->heads(), Texts{head(name)});
    QCOMPARE(recording(QString::fromLatin1(name)), QByteArray("recording"));
}

void DownloadTest::threeFilesGoOneAfterTheOther()
{
    const Texts names{"e.mp4", "c.mp4", "b.mp4"};
    scene->linkAndBrowse(fiveFiles);
    for (int number = 0; number < 3; ++number) {
        fake::Gate& gate = (*gates)[static_cast<std::size_t>(number)];
        const QByteArray body = QByteArray("recording ") + names[number] + QByteArray(9000, 'x');
        scene->camera->on(target(names[number]), [&gate, body](support::Peer& peer) {
            gate.pass();
            peer.send(fake::withLength(body));
        });
    }
    const UserWindow& user = *scene->user;
    user.chooseRows({1, 4, 2});
    user.clickDownload();
    for (int number = 0; number < 3; ++number) {
        fake::Gate& gate = (*gates)[static_cast<std::size_t>(number)];
        QTRY_VERIFY(gate.isReached());
        QCOMPARE(user.downloadCount(), QStringLiteral("%1/3").arg(number + 1));
        QCOMPARE(user.downloadLabel(), support::windowText("progress").english);
        QVERIFY(user.progressBar().isVisible());
        QVERIFY(!user.canDownload());
        user.clickDownload(); // no effect, because the button is disabled
        QCOMPARE(scene->camera->heads(),
                 (Texts{head("e.mp4"), head("c.mp4"), head("b.mp4")}.mid(0, number + 1)));
        gate.open();
    }
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(scene->camera->heads().size(), 3);
    for (const QByteArray& name : names) {
        QCOMPARE(recording(QString::fromLatin1(name)), "recording " + name + QByteArray(9000, 'x'));
    }
    QCOMPARE(QDir(recordings()).entryList(QDir::Files), (QStringList{"b.mp4", "c.mp4", "e.mp4"}));
}

void DownloadTest::nextFileWaitsForTheEndOfTheOneBefore()
{
    scene->linkAndBrowse(fiveFiles);
    fake::Gate& gate = gates->front();
    scene->camera->answer(target(""), "second");
    scene->camera->on(target("b.mp4"), [&gate](support::Peer& peer) {
        peer.send(fake::withLength("the whole recording"));
        gate.pass(); // the connection stays open, and the thread waits in one more receive
    });
    const UserWindow& user = *scene->user;
    const int before = scene->camera->connectionCount();
    user.chooseRows({0, 1});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 19);
    QTRY_COMPARE(recording("b.mp4"), QByteArray("the whole recording"));
    QCOMPARE(user.downloadCount(), QStringLiteral("1/2"));
    QVERIFY(!user.canDownload());
    QCOMPARE(scene->camera->connectionCount(), before + 1);
    QCOMPARE(user.window().findChildren<QThread*>().size(), 3);
    gate.open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(scene->camera->connectionCount(), before + 2);
    QCOMPARE(recording("a.mp4"), QByteArray("second"));
}

void DownloadTest::progressFollowsTheBytes()
{
    scene->linkAndBrowse({"a.mp4"});
    scene->camera->on(target("a.mp4"), [this](support::Peer& peer) {
        (*gates)[0].pass();
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 4000\r\n\r\n" + QByteArray(1000, 'a'));
        (*gates)[1].pass();
        peer.send(QByteArray(2000, 'b'));
        (*gates)[2].pass();
        peer.send(QByteArray(1000, 'c'));
    });
    const UserWindow& user = *scene->user;
    user.chooseRows({0});
    user.clickDownload();
    QTRY_VERIFY((*gates)[0].isReached());
    QCOMPARE(user.progressBar().value(), 0);
    QVERIFY(user.progressBar().isVisible());
    (*gates)[0].open();
    QTRY_COMPARE(user.progressBar().value(), 1000);
    QCOMPARE(user.progressBar().maximum(), 4000);
    QCOMPARE(user.progressBar().text(), QStringLiteral("25%"));
    (*gates)[1].open();
    QTRY_COMPARE(user.progressBar().value(), 3000);
    QCOMPARE(user.progressBar().text(), QStringLiteral("75%"));
    (*gates)[2].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("a.mp4"),
             QByteArray(1000, 'a') + QByteArray(2000, 'b') + QByteArray(1000, 'c'));
}

void DownloadTest::barHasThePlatformsStyle()
{
    scene->linkAndBrowse({"a.mp4"});
    scene->camera->answer(target(""), "recording");
    scene->user->chooseRows({0});
    scene->user->clickDownload();
    QTRY_VERIFY(scene->user->isIdle());
    QVERIFY(!scene->user->progressBar().testAttribute(Qt::WA_SetStyle));
    QCOMPARE(scene->user->progressBar().style(), QApplication::style());
}

void DownloadTest::eachFileStartsAtZero()
{
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    scene->camera->answer(target("b.mp4"), QByteArray(5000, 'b'));
    scene->camera->on(target("a.mp4"), [this](support::Peer& peer) {
        (*gates)[0].pass();
        peer.send(fake::withLength("a"));
    });
    const UserWindow& user = *scene->user;
    user.chooseRows({0, 1});
    user.clickDownload();
    QTRY_VERIFY((*gates)[0].isReached());
    QTRY_COMPARE(user.downloadCount(), QStringLiteral("2/2"));
    QCOMPARE(user.progressBar().value(), 0);
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
}

void DownloadTest::windowIsAliveDuringADownload()
{
    scene->linkAndBrowse(fiveFiles);
    scene->camera->on(target(""), [this](support::Peer& peer) {
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nab");
        (*gates)[0].pass();
        peer.send("cd");
    });
    const UserWindow& user = *scene->user;
    user.chooseRows({0});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 2);

    QTimer timer;
    QSignalSpy ticks(&timer, &QTimer::timeout);
    timer.start(1);
    QTRY_VERIFY(ticks.count() >= 20);
    user.chooseChinese();
    QCOMPARE(user.button("pushButtonDownloadFile").text(), support::windowText("download").chinese);
    auto& selectAll = user.probe().child<QCheckBox>(QStringLiteral("checkBoxSelectAllFiles"));
    QTest::keyClick(&selectAll, Qt::Key_Space);
    QCOMPARE(user.table().selectionModel()->selectedRows().size(), 5);
    scene->control->link().send(QByteArray::fromHex("aaaf04010000"));
    QTRY_COMPARE(user.status(), support::windowText("linked").chinese);
    QVERIFY(!user.canDownload());
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("a.mp4"), QByteArray("abcd"));
}

void DownloadTest::labelKeepsItsLanguageUntilTheNextFile()
{
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    for (const int number : {0, 1}) {
        scene->camera->on(target(number == 0 ? "b.mp4" : "a.mp4"),
                          [this, number](support::Peer& peer) {
                              (*gates)[static_cast<std::size_t>(number)].pass();
                              peer.send(fake::withLength("x"));
                          });
    }
    const UserWindow& user = *scene->user;
    user.chooseRows({0, 1});
    user.clickDownload();
    QTRY_VERIFY((*gates)[0].isReached());
    user.chooseChinese();
    QCOMPARE(user.downloadLabel(), support::windowText("progress").english);
    (*gates)[0].open();
    QTRY_COMPARE(user.downloadLabel(), support::windowText("progress").chinese);
    QCOMPARE(user.downloadCount(), QStringLiteral("2/2"));
    (*gates)[1].open();
    QTRY_VERIFY(user.isIdle());
}

void DownloadTest::failedFileIsFollowedByTheNext_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("reset");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("closed without an answer") << QByteArray() << false << QByteArray();
    QTest::newRow("reset without an answer") << QByteArray() << true << QByteArray();
    QTest::newRow("no length") << QByteArray("HTTP/1.1 200 OK\r\n\r\nbody") << false
                               << QByteArray();
    QTest::newRow("closed in the body")
        << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf") << false
        << QByteArray("half");
    QTest::newRow("the page of a 404")
        << QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nnone") << false
        << QByteArray("none");
}

void DownloadTest::failedFileIsFollowedByTheNext()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, reset);
    QFETCH(QByteArray, content);
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    scene->camera->answer(target("a.mp4"), "good");
    scene->camera->on(target("b.mp4"), [answer, reset](support::Peer& peer) {
        peer.send(answer);
        if (reset) {
            peer.reset();
        }
    });
    scene->user->chooseRows({0, 1});
    scene->user->clickDownload();
    QTRY_VERIFY(scene->user->isIdle());
    QCOMPARE(scene->camera->targets(), (Texts{target("b.mp4"), target("a.mp4")}));
    QCOMPARE(recording("b.mp4"), content);
    QCOMPARE(recording("a.mp4"), QByteArray("good"));
}

void DownloadTest::cameraSwitchedOffEndsEveryFile()
{
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    scene->camera.reset();
    const support::StdoutCapture output;
    scene->user->chooseRows({0, 1});
    scene->user->clickDownload();
    QTRY_VERIFY(scene->user->isIdle());
    QCOMPARE(output.text(), QByteArray("connect failed, return: -1\nconnect failed, return: -1\n"));
}

void DownloadTest::nameThatIsNoFileNameIsRequestedButNotWritten_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("the folder") << QByteArray(".");
    QTest::newRow("the folder above") << QByteArray("..");
    QTest::newRow("a path out of the folder") << QByteArray("../stray.mp4");
    QTest::newRow("a path into a folder") << QByteArray("x/stray.mp4");
    QTest::newRow("an absolute path") << QByteArray("/tmp/stray.mp4");
}

void DownloadTest::nameThatIsNoFileNameIsRequestedButNotWritten()
{
    QFETCH(QByteArray, name);
    scene->linkAndBrowse({name});
    QCOMPARE(scene->user->row(0).first(), QString::fromLatin1(name));
    QVERIFY(QDir(QDir::homePath() + "/Desktop").mkpath("DCIM/x"));
    scene->camera->on(target(""), [this](support::Peer& peer) {
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nabc");
        (*gates)[0].pass();
        peer.send("def");
    });
    const support::StdoutCapture output;
    scene->user->chooseRows({0});
    scene->user->clickDownload();
    QTRY_COMPARE(scene->user->progressBar().value(), 3);
    QCOMPARE(scene->user->downloadCount(), QStringLiteral("1/1"));
    (*gates)[0].open();
    QTRY_VERIFY(scene->user->isIdle());
    QCOMPARE(scene->camera->heads(), Texts{head(name)});
    QCOMPARE(output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(QDir(QDir::homePath() + "/Desktop").entryList(QDir::Files), QStringList());
    QCOMPARE(QDir(recordings()).entryList(QDir::Files), QStringList());
    QCOMPARE(QDir(recordings() + "/x").entryList(QDir::Files), QStringList());
    QVERIFY(!QFile::exists("/tmp/stray.mp4"));
}

void DownloadTest::rowsGoneAfterABrowseAreSkipped()
{
    scene->linkAndBrowse(fiveFiles);
    scene->camera->answer(target(""), "x");
    scene->camera->on(target("e.mp4"), [this](support::Peer& peer) {
        (*gates)[0].pass();
        peer.send(fake::withLength("e"));
    });
    scene->camera->on(target("new.mp4"), [this](support::Peer& peer) {
        (*gates)[1].pass();
        peer.send(fake::withLength("new"));
    });
    const UserWindow& user = *scene->user;
    user.chooseRows({0, 2, 4});
    user.clickDownload();
    QTRY_VERIFY((*gates)[0].isReached());
    scene->camera->holdFiles({"new.mp4"});
    user.clickBrowse();
    QCOMPARE(user.names(), QStringList{"new.mp4"});
    scene->camera->forgetRequests();
    (*gates)[0].open();
    QTRY_VERIFY((*gates)[1].isReached());
    QCOMPARE(user.downloadCount(), QStringLiteral("3/3"));
    QVERIFY(!user.canDownload());
    QCOMPARE(scene->camera->targets(), Texts{target("new.mp4")});
    (*gates)[1].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("new.mp4"), QByteArray("new"));
}

void DownloadTest::noRowLeftEndsTheDownload()
{
    scene->linkAndBrowse(fiveFiles);
    scene->camera->on(target("e.mp4"), [this](support::Peer& peer) {
        (*gates)[0].pass();
        peer.send(fake::withLength("e"));
    });
    const UserWindow& user = *scene->user;
    user.chooseRows({0, 2, 4});
    user.clickDownload();
    QTRY_VERIFY((*gates)[0].isReached());
    scene->camera->answer(fake::deleteAllTarget, "done\r\n");
    user.clickDeleteAll();
    QCOMPARE(user.table().rowCount(), 0);
    scene->camera->forgetRequests();
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(scene->camera->targets(), Texts());
    QCOMPARE(recording("e.mp4"), QByteArray("e"));
}

void DownloadTest::rowWithoutAnItemIsSkippedAtTheStart()
{
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    scene->camera->on(target("a.mp4"), [this](support::Peer& peer) {
        (*gates)[0].pass();
        peer.send(fake::withLength("a"));
    });
    const UserWindow& user = *scene->user;
    user.chooseRows({0, 1});
    delete user.table().takeItem(1, 0);
    user.clickDownload();
    QTRY_VERIFY((*gates)[0].isReached());
    QCOMPARE(user.downloadCount(), QStringLiteral("2/2"));
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(scene->camera->targets(), Texts{target("a.mp4")});
}

void DownloadTest::onlyMissingItemsStartNothing()
{
    scene->linkAndBrowse({"a.mp4"});
    const int before = scene->camera->connectionCount();
    scene->user->chooseRows({0});
    delete scene->user->table().takeItem(0, 0);
    scene->user->clickDownload();
    QVERIFY(scene->user->isIdle());
    QCOMPARE(scene->camera->connectionCount(), before);
}

void DownloadTest::secondDownloadKeepsTheTailOfALongerFile()
{
    scene->linkAndBrowse({"a.mp4"});
    scene->camera->answer(target("a.mp4"), "0123456789");
    scene->user->chooseRows({0});
    scene->user->clickDownload();
    QTRY_VERIFY(scene->user->isIdle());
    scene->camera->answer(target("a.mp4"), "abcd");
    scene->user->clickDownload();
    QTRY_VERIFY(scene->user->isIdle());
    QCOMPARE(scene->camera->heads().size(), 2);
    QCOMPARE(recording("a.mp4"), QByteArray("abcd456789"));
}

void DownloadTest::countsBeyondAnIntAreHarmless()
{
    const UserWindow& user = *scene->user;
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
