// Concurrent operations of the window: link, browse, download, delete and language.
#include "tests/kit/LinkedScene.h"
#include "tests/kit/MessageBoxWatcher.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowTexts.h"

#include <array>
#include <chrono>
#include <memory>
#include <thread>

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QList>
#include <QTimer>

namespace {

using Texts = QList<QByteArray>;

const QByteArray heartbeat = QByteArray::fromHex("aaaf04010000");
const QByteArray heartbeatAnswer = QByteArray::fromHex("aaaf0401015f");

const Texts fiveFiles{"a.mp4", "b.mp4", "c.mp4", "d.mp4", "e.mp4"};

QByteArray target(const QByteArray& name)
{
    return fake::downloadTarget + name;
}

QByteArray recording(const QString& name)
{
    QFile file(QDir::homePath() + QStringLiteral("/Desktop/DCIM/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

/// Waits for a condition without processing events. Returns false after five seconds. Used in a
/// camera's thread to wait for an event on the link before the camera answers the waiting window.
bool waitFor(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace

class InterplayTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void browseDuringADownloadLeavesItAlone();
    void deleteDuringADownloadEndsTheQueue();
    void downloadedFileMayBeDeletedMeanwhile();
    void deleteOfNothingDuringADownloadEndsTheQueue();
    void emptyingTheCardDuringADownloadEndsTheQueue_data();
    void emptyingTheCardDuringADownloadEndsTheQueue();
    void nextFileStartsWhileTheBoxOfADeleteAllIsOpen();
    void languageSwitchesWhileLinkedAndDownloading();
    void linkLostDuringADownloadDoesNotStopIt();
    void linkLostBetweenClickAndAnswerShowsAfterTheAnswer();
    void linkLostBetweenTwoDeletesDoesNotStopTheSecond();
    void linkLostDuringABrowseShowsAfterTheLastDetails();
    void heartbeatIsAnsweredWhileTheWindowWaitsForTheCamera();
    void twoPairsOfLinksBothAnswer();
    void eitherPairMovesTheStatus();
    void downloadGoesOnBesideAFreshPairOfLinks();

private:
    /// Makes the camera send the recording in two parts and wait at the gate between them.
    void answerInTwo(const QByteArray& name, std::size_t gate);

    std::unique_ptr<std::array<fake::Gate, 3>> gates; // outlive the camera that waits at them
    std::unique_ptr<LinkedScene> scene;
};

void InterplayTest::init()
{
    gates = std::make_unique<std::array<fake::Gate, 3>>();
    scene = std::make_unique<LinkedScene>();
}

void InterplayTest::cleanup()
{
    for (fake::Gate& gate : *gates) {
        gate.open();
    }
    QCOMPARE(scene->camera->errors(), Texts());
    scene.reset();
    QDir(QDir::homePath() + QStringLiteral("/Desktop/DCIM")).removeRecursively();
}

void InterplayTest::answerInTwo(const QByteArray& name, std::size_t gate)
{
    scene->camera->on(target(name), [this, name, gate](support::Peer& peer) {
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(5 + name.size()) +
                  "\r\n\r\nfrom ");
        (*gates)[gate].pass();
        peer.send(name);
    });
}

void InterplayTest::browseDuringADownloadLeavesItAlone()
{
    scene->linkAndBrowse(fiveFiles);
    const UserWindow& user = *scene->user;
    answerInTwo("e.mp4", 0);
    answerInTwo("y.mp4", 1);
    user.chooseRows({1, 4});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);

    scene->camera->holdFiles({"x.mp4", "y.mp4", "z.mp4"});
    user.clickBrowse();
    QCOMPARE(user.names(), (QStringList{"x.mp4", "y.mp4", "z.mp4"}));
    QCOMPARE(user.row(2), (QStringList{"z.mp4", "2020-01-31  12:45:02", "1MB", "37s"}));
    QCOMPARE(user.downloadCount(), QStringLiteral("1/2"));
    QCOMPARE(user.progressBar().value(), 5);
    QVERIFY(user.progressBar().isVisible());
    QVERIFY(!user.canDownload());

    // The selected row holds another file now.
    (*gates)[0].open();
    QTRY_VERIFY((*gates)[1].isReached());
    QCOMPARE(user.downloadCount(), QStringLiteral("2/2"));
    (*gates)[1].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("e.mp4"), QByteArray("from e.mp4"));
    QCOMPARE(recording("y.mp4"), QByteArray("from y.mp4"));
}

void InterplayTest::deleteDuringADownloadEndsTheQueue()
{
    scene->linkAndBrowse(fiveFiles);
    const UserWindow& user = *scene->user;
    answerInTwo("e.mp4", 0);
    scene->camera->answer(fake::deleteTarget, "Success\r\n");
    user.chooseRows({2, 3, 4});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);

    // The download queue and the delete use the same selection record, and the delete consumes it.
    user.chooseRows({0, 1});
    user.clickDelete();
    QCOMPARE(user.names(), (QStringList{"c.mp4", "d.mp4", "e.mp4"}));
    QCOMPARE(user.downloadCount(), QStringLiteral("1/3"));
    QVERIFY(!user.canDownload());
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("e.mp4"), QByteArray("from e.mp4"));
    QCOMPARE(scene->camera->targets(),
             (Texts{target("e.mp4"), QByteArray(fake::deleteTarget) + "b.mp4",
                    QByteArray(fake::deleteTarget) + "a.mp4"}));
}

void InterplayTest::downloadedFileMayBeDeletedMeanwhile()
{
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    const UserWindow& user = *scene->user;
    answerInTwo("b.mp4", 0);
    scene->camera->answer(fake::deleteTarget, "Success\r\n");
    user.chooseRows({1});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);
    user.clickDelete();
    QCOMPARE(user.names(), QStringList{"a.mp4"});
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("b.mp4"), QByteArray("from b.mp4"));
    // The next download works normally.
    scene->camera->answer(target("a.mp4"), "a");
    user.chooseRows({0});
    user.clickDownload();
    QTRY_COMPARE(recording("a.mp4"), QByteArray("a"));
    QTRY_VERIFY(user.isIdle());
}

void InterplayTest::deleteOfNothingDuringADownloadEndsTheQueue()
{
    scene->linkAndBrowse(fiveFiles);
    const UserWindow& user = *scene->user;
    answerInTwo("e.mp4", 0);
    user.chooseRows({3, 4});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);

    // The delete clears the selection record before it finds that nothing is selected.
    user.table().clearSelection();
    user.clickDelete();
    QCOMPARE(user.table().rowCount(), 5);
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("e.mp4"), QByteArray("from e.mp4"));
    QCOMPARE(scene->camera->targets(), Texts{target("e.mp4")});
}

void InterplayTest::emptyingTheCardDuringADownloadEndsTheQueue_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("delete all") << QByteArray(fake::deleteAllTarget);
    QTest::newRow("format") << QByteArray(fake::formatTarget);
}

void InterplayTest::emptyingTheCardDuringADownloadEndsTheQueue()
{
    QFETCH(QByteArray, command);
    scene->linkAndBrowse(fiveFiles);
    const UserWindow& user = *scene->user;
    answerInTwo("e.mp4", 0);
    scene->camera->answer(command, "Success\r\n");
    user.chooseRows({2, 3, 4});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);

    support::MessageBoxWatcher watcher;
    watcher.answerNext(QMessageBox::Ok);
    if (command == fake::formatTarget) {
        user.clickFormat();
    } else {
        user.clickDeleteAll();
    }
    QCOMPARE(user.table().rowCount(), 0);
    QCOMPARE(user.downloadCount(), QStringLiteral("1/3"));
    QVERIFY(!user.canDownload());
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("e.mp4"), QByteArray("from e.mp4"));
    QCOMPARE(scene->camera->targets(), (Texts{target("e.mp4"), command}));
}

// The box runs its own event loop, in which the download continues. The rows stay until the box
// closes.
void InterplayTest::nextFileStartsWhileTheBoxOfADeleteAllIsOpen()
{
    scene->linkAndBrowse(fiveFiles);
    const UserWindow& user = *scene->user;
    answerInTwo("e.mp4", 0);
    answerInTwo("d.mp4", 1);
    scene->camera->answer(fake::deleteAllTarget, "Success\r\n");
    user.chooseRows({2, 3, 4});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);

    QString countBehindTheBox;
    const QDeadlineTimer patience(5000);
    QTimer look;
    connect(&look, &QTimer::timeout, &look, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            (*gates)[0].open();
            if ((*gates)[1].isReached() || patience.hasExpired()) {
                look.stop();
                countBehindTheBox = user.downloadCount();
                QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
            }
        }
    });
    look.start(1);
    user.clickDeleteAll();
    QCOMPARE(countBehindTheBox, QStringLiteral("2/3"));
    QCOMPARE(user.table().rowCount(), 0);
    (*gates)[1].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("e.mp4"), QByteArray("from e.mp4"));
    QCOMPARE(recording("d.mp4"), QByteArray("from d.mp4"));
    QCOMPARE(recording("c.mp4"), QByteArray("no file"));
}

void InterplayTest::languageSwitchesWhileLinkedAndDownloading()
{
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    const UserWindow& user = *scene->user;
    answerInTwo("b.mp4", 0);
    answerInTwo("a.mp4", 1);
    user.chooseRows({0, 1});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);

    user.chooseChinese();
    QCOMPARE(user.status(), support::windowText("linked").english);
    QCOMPARE(user.downloadLabel(), support::windowText("progress").english);
    QCOMPARE(user.table().horizontalHeaderItem(0)->text(), QStringLiteral("名称"));
    QCOMPARE(user.names(), (QStringList{"a.mp4", "b.mp4"}));
    scene->control->link().send(heartbeat);
    QTRY_COMPARE(user.status(), support::windowText("linked").chinese);
    (*gates)[0].open();
    QTRY_VERIFY((*gates)[1].isReached());
    QCOMPARE(user.downloadLabel(), support::windowText("progress").chinese);
    user.chooseEnglish();
    QCOMPARE(user.downloadLabel(), support::windowText("progress").chinese);
    QCOMPARE(user.downloadCount(), QStringLiteral("2/2"));
    (*gates)[1].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(user.button("pushButtonDownloadFile").text(), QStringLiteral("Download File"));
}

void InterplayTest::linkLostDuringADownloadDoesNotStopIt()
{
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    const UserWindow& user = *scene->user;
    answerInTwo("b.mp4", 0);
    scene->camera->answer(target("a.mp4"), "a");
    user.chooseRows({0, 1});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);
    scene->control->link().close();
    QTRY_VERIFY(user.showsLinkFail());
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("a.mp4"), QByteArray("a"));
    // Without a link, a click on the download button has no effect.
    user.clickDownload();
    QVERIFY(user.isIdle());
    QCOMPARE(scene->camera->targets().size(), 2);
}

void InterplayTest::linkLostBetweenClickAndAnswerShowsAfterTheAnswer()
{
    scene->linkAndBrowse(fiveFiles);
    const UserWindow& user = *scene->user;
    scene->camera->on(fake::deleteAllTarget, [this](support::Peer& peer) {
        scene->control->link().close();
        // A second connection shows that the link thread has noticed the loss.
        if (waitFor([this] { return scene->control->links() == QList<int>{2}; })) {
            peer.send(fake::withLength("Success\r\n"));
        }
    });
    support::MessageBoxWatcher watcher;
    watcher.answerNext(QMessageBox::Ok);
    user.clickDeleteAll();
    QCOMPARE(watcher.boxes().size(), 1);
    QCOMPARE(user.table().rowCount(), 0);
    QTRY_VERIFY(user.showsLinkFail());
}

void InterplayTest::linkLostBetweenTwoDeletesDoesNotStopTheSecond()
{
    scene->linkAndBrowse(fiveFiles);
    const UserWindow& user = *scene->user;
    scene->camera->answer(fake::deleteTarget, "Success\r\n");
    scene->camera->on(QByteArray(fake::deleteTarget) + "e.mp4", [this](support::Peer& peer) {
        scene->control->link().close();
        if (waitFor([this] { return scene->control->links().contains(2); })) {
            peer.send(fake::withLength("Success\r\n"));
        }
    });
    user.chooseRows({0, 4});
    user.clickDelete();
    QCOMPARE(user.names(), (QStringList{"b.mp4", "c.mp4", "d.mp4"}));
    QTRY_VERIFY(user.showsLinkFail());
    user.chooseRows({0});
    user.clickDelete();
    QCOMPARE(user.table().rowCount(), 3);
}

void InterplayTest::linkLostDuringABrowseShowsAfterTheLastDetails()
{
    scene->link();
    const UserWindow& user = *scene->user;
    scene->camera->holdFiles({"a.mp4", "b.mp4"});
    scene->camera->on(fake::listTarget, [&](support::Peer& peer) {
        scene->control->link().close();
        if (waitFor([this] { return scene->control->links() == QList<int>{2}; })) {
            peer.send(fake::withLength("ZEPNA/a.mp4;ZEPNA/b.mp4;\r\n"));
        }
    });
    user.clickBrowse();
    QCOMPARE(user.names(), (QStringList{"a.mp4", "b.mp4"}));
    QCOMPARE(user.row(1).last(), QStringLiteral("37s"));
    QVERIFY(user.showsLinkSuccess()); // the loss is still queued for the window
    QTRY_VERIFY(user.showsLinkFail());
}

void InterplayTest::heartbeatIsAnsweredWhileTheWindowWaitsForTheCamera()
{
    scene->link();
    const UserWindow& user = *scene->user;
    scene->camera->holdFiles({"a.mp4"});
    bool answered = false;
    scene->camera->on(fake::countTarget, [this, &answered](support::Peer& peer) {
        scene->control->link().send(heartbeat);
        scene->ground->link().send(QByteArray::fromHex("bbaf04010000"));
        answered = waitFor([this] {
            return scene->control->link().received() == heartbeatAnswer &&
                   scene->ground->link().received() == heartbeatAnswer;
        });
        peer.send(fake::withLength("=\"1\";"));
    });
    user.clickBrowse();
    QVERIFY(answered);
    QCOMPARE(user.names(), QStringList{"a.mp4"});
}

void InterplayTest::twoPairsOfLinksBothAnswer()
{
    scene->link();
    const UserWindow& user = *scene->user;
    fake::Module& control = *scene->control;
    fake::Module& ground = *scene->ground;
    control.link().close();
    QTRY_VERIFY(user.showsLinkFail());
    QTRY_COMPARE(control.links(), QList<int>{2});
    user.clickLink();
    QVERIFY(user.showsLinkSuccess());
    QTRY_COMPARE(control.links(), (QList<int>{2, 4}));
    QTRY_COMPARE(ground.links(), (QList<int>{1, 3}));

    for (int beat = 1; beat <= 3; ++beat) {
        for (const int link : {2, 4}) {
            control[link].send(heartbeat);
            QTRY_COMPARE(control[link].received(), heartbeatAnswer.repeated(beat));
        }
        for (const int link : {1, 3}) {
            ground[link].send(QByteArray::fromHex("bbaf04010000"));
            QTRY_COMPARE(ground[link].received(), heartbeatAnswer.repeated(beat));
        }
    }
    QVERIFY(user.showsLinkSuccess());
    control[2].send(QByteArray::fromHex("aaaf000907012c02580064000a00"));
    QTRY_COMPARE(user.versions(), (QStringList{"v7", "v3", "v6", "v1", "v0.1"}));
    control[4].send(QByteArray::fromHex("aaaf000901000100020003000400"));
    QTRY_COMPARE(user.versions(), (QStringList{"v1", "v0.01", "v0.02", "v0.03", "v0.04"}));
}

void InterplayTest::eitherPairMovesTheStatus()
{
    scene->link();
    const UserWindow& user = *scene->user;
    fake::Module& control = *scene->control;
    control.link().close();
    QTRY_VERIFY(user.showsLinkFail());
    QTRY_COMPARE(control.links(), QList<int>{2});
    user.clickLink();
    QTRY_COMPARE(control.links(), (QList<int>{2, 4}));
    control[2].close();
    QTRY_VERIFY(user.showsLinkFail());
    control[4].send(heartbeat);
    QTRY_VERIFY(user.showsLinkSuccess());
    control[4].close();
    QTRY_VERIFY(user.showsLinkFail());
    QTRY_COMPARE(control.links().size(), 2);
}

void InterplayTest::downloadGoesOnBesideAFreshPairOfLinks()
{
    scene->linkAndBrowse({"a.mp4"});
    const UserWindow& user = *scene->user;
    answerInTwo("a.mp4", 0);
    user.chooseRows({0});
    user.clickDownload();
    QTRY_COMPARE(user.progressBar().value(), 5);
    scene->control->link().close();
    QTRY_VERIFY(user.showsLinkFail());
    user.clickLink();
    QVERIFY(user.showsLinkSuccess());
    QVERIFY(!user.canDownload());
    (*gates)[0].open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording("a.mp4"), QByteArray("from a.mp4"));
}

BELUN_NETWORK_TEST(InterplayTest)
#include "InterplayTest.moc"
