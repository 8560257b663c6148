// Concurrent operations of the window: link, browse, download, delete and language.
#include "tests/app/Scene.h"
#include "tests/kit/MessageBoxWatcher.h"
#include "tests/kit/TestMain.h"

#include <chrono>
#include <thread>

#include <QApplication>
#include <QDeadlineTimer>
#include <QList>
#include <QTimer>

namespace {

/// Loses the control link and waits, without processing events, until its thread has reconnected.
/// Used in a camera's thread, before the camera answers the waiting window.
void loseLinkMeanwhile(Scene& scene)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    scene.control->link().close();
    while (scene.control->links() != QList<int>{2} && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace

class InterplayTest : public QObject
{
    Q_OBJECT

private slots:
    void browseDuringADownloadLeavesItAlone();
    void deleteDuringADownloadEndsTheQueue();
    void downloadedFileMayBeDeletedMeanwhile();
    void deleteOfNothingDuringADownloadEndsTheQueue();
    void emptyingTheCardDuringADownloadEndsTheQueue_data();
    void emptyingTheCardDuringADownloadEndsTheQueue();
    void nextFileStartsWhileTheBoxOfADeleteAllIsOpen();
    void linkLostDuringADownloadDoesNotStopIt();
    void linkLostBetweenClickAndAnswerShowsAfterTheAnswer();
    void linkLostBetweenTwoDeletesDoesNotStopTheSecond();
    void linkLostDuringABrowseShowsAfterTheLastDetails();
    void heartbeatIsAnsweredWhileTheWindowWaitsForTheCamera();
    void twoPairsOfLinksBothAnswer();
    void eitherPairMovesTheStatus();
    void downloadGoesOnBesideAFreshPairOfLinks();
};

void InterplayTest::browseDuringADownloadLeavesItAlone()
{
    Scene scene(fiveFiles);
    scene.stall("y.mp4");
    scene.downloadUntilStalled({1, 4}, "e.mp4");

    scene.camera->holdFiles({"x.mp4", "y.mp4", "z.mp4"});
    scene.user.clickBrowse();
    QCOMPARE(scene.user.names(), (QStringList{"x.mp4", "y.mp4", "z.mp4"}));
    QCOMPARE(scene.user.row(2), (QStringList{"z.mp4", "2020-01-31  12:45:02", "1MB", "37s"}));
    QCOMPARE(scene.user.downloadCount(), QString("1/2"));
    QCOMPARE(scene.user.progressBar().value(), 5);
    QVERIFY(scene.user.progressBar().isVisible());
    QVERIFY(!scene.user.canDownload());

    // The selected row holds another file now.
    scene.gate("e.mp4").open();
    QTRY_VERIFY(scene.gate("y.mp4").isReached());
    QCOMPARE(scene.user.downloadCount(), QString("2/2"));
    scene.finishDownload("y.mp4");
    QCOMPARE(recording("e.mp4"), QByteArray("from e.mp4"));
}

void InterplayTest::deleteDuringADownloadEndsTheQueue()
{
    Scene scene(fiveFiles);
    scene.camera->answer(fake::deleteTarget, "Success\r\n");
    scene.downloadUntilStalled({2, 3, 4}, "e.mp4");

    // The download queue and the delete use the same selection record, which the delete uses up.
    scene.user.deleteRows({0, 1});
    QCOMPARE(scene.user.names(), (QStringList{"c.mp4", "d.mp4", "e.mp4"}));
    QCOMPARE(scene.user.downloadCount(), QString("1/3"));
    QVERIFY(!scene.user.canDownload());
    scene.finishDownload("e.mp4");
    QCOMPARE(scene.camera->targets(),
             (Texts{downloadOf("e.mp4"), deleteOf("b.mp4"), deleteOf("a.mp4")}));
}

void InterplayTest::downloadedFileMayBeDeletedMeanwhile()
{
    Scene scene({"a.mp4", "b.mp4"});
    scene.camera->answer(fake::deleteTarget, "Success\r\n");
    scene.downloadUntilStalled({1}, "b.mp4");
    scene.user.clickDelete();
    QCOMPARE(scene.user.names(), QStringList{"a.mp4"});
    scene.finishDownload("b.mp4");
    // The next download works normally.
    scene.camera->answer(downloadOf("a.mp4"), "a");
    scene.user.downloadRows({0});
    QTRY_COMPARE(recording("a.mp4"), QByteArray("a"));
    QTRY_VERIFY(scene.user.isIdle());
}

void InterplayTest::deleteOfNothingDuringADownloadEndsTheQueue()
{
    Scene scene(fiveFiles);
    scene.downloadUntilStalled({3, 4}, "e.mp4");

    // A delete clears the selection record, even if no row is selected.
    scene.user.table().clearSelection();
    scene.user.clickDelete();
    QCOMPARE(scene.user.table().rowCount(), 5);
    scene.finishDownload("e.mp4");
    QCOMPARE(scene.camera->targets(), Texts{downloadOf("e.mp4")});
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
    Scene scene(fiveFiles);
    scene.camera->answer(command, "Success\r\n");
    scene.downloadUntilStalled({2, 3, 4}, "e.mp4");

    support::MessageBoxWatcher watcher;
    watcher.answerNext(QMessageBox::Ok);
    command == fake::formatTarget ? scene.user.clickFormat() : scene.user.clickDeleteAll();
    QCOMPARE(scene.user.table().rowCount(), 0);
    QCOMPARE(scene.user.downloadCount(), QString("1/3"));
    QVERIFY(!scene.user.canDownload());
    scene.finishDownload("e.mp4");
    QCOMPARE(scene.camera->targets(), (Texts{downloadOf("e.mp4"), command}));
}

// The box runs its own event loop, in which the download continues. The rows stay until the box
// closes.
void InterplayTest::nextFileStartsWhileTheBoxOfADeleteAllIsOpen()
{
    Scene scene(fiveFiles);
    scene.stall("d.mp4");
    scene.camera->answer(fake::deleteAllTarget, "Success\r\n");
    scene.downloadUntilStalled({2, 3, 4}, "e.mp4");

    QString countBehindTheBox;
    const QDeadlineTimer patience(5000);
    QTimer look;
    connect(&look, &QTimer::timeout, &look, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            scene.gate("e.mp4").open();
            if (scene.gate("d.mp4").isReached() || patience.hasExpired()) {
                look.stop();
                countBehindTheBox = scene.user.downloadCount();
                QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
            }
        }
    });
    look.start(1);
    scene.user.clickDeleteAll();
    QCOMPARE(countBehindTheBox, QString("2/3"));
    QCOMPARE(scene.user.table().rowCount(), 0);
    scene.finishDownload("d.mp4");
    QCOMPARE(recording("e.mp4"), QByteArray("from e.mp4"));
    QCOMPARE(recording("c.mp4"), QByteArray("no file"));
}

void InterplayTest::linkLostDuringADownloadDoesNotStopIt()
{
    Scene scene({"a.mp4", "b.mp4"});
    scene.camera->answer(downloadOf("a.mp4"), "a");
    scene.downloadUntilStalled({0, 1}, "b.mp4");
    scene.loseLink();
    scene.gate("b.mp4").open();
    QTRY_VERIFY(scene.user.isIdle());
    QCOMPARE(recording("a.mp4"), QByteArray("a"));
    // Without a link, a click on the download button has no effect.
    scene.user.clickDownload();
    QVERIFY(scene.user.isIdle());
    QCOMPARE(scene.camera->targets().size(), 2);
}

void InterplayTest::linkLostBetweenClickAndAnswerShowsAfterTheAnswer()
{
    Scene scene(fiveFiles);
    scene.camera->on(fake::deleteAllTarget, [&scene](support::Peer& peer) {
        loseLinkMeanwhile(scene);
        peer.send(fake::withLength("Success\r\n"));
    });
    support::MessageBoxWatcher watcher;
    watcher.answerNext(QMessageBox::Ok);
    scene.user.clickDeleteAll();
    QCOMPARE(watcher.boxes().size(), 1);
    QCOMPARE(scene.user.table().rowCount(), 0);
    QTRY_VERIFY(scene.user.showsLinkFail());
}

void InterplayTest::linkLostBetweenTwoDeletesDoesNotStopTheSecond()
{
    Scene scene(fiveFiles);
    scene.camera->answer(fake::deleteTarget, "Success\r\n");
    scene.camera->on(deleteOf("e.mp4"), [&scene](support::Peer& peer) {
        loseLinkMeanwhile(scene);
        peer.send(fake::withLength("Success\r\n"));
    });
    scene.user.deleteRows({0, 4});
    QCOMPARE(scene.user.names(), (QStringList{"b.mp4", "c.mp4", "d.mp4"}));
    QTRY_VERIFY(scene.user.showsLinkFail());
    // Without a link, the buttons have no effect.
    const int before = scene.camera->connectionCount();
    scene.user.deleteRows({0});
    scene.user.clickDeleteAll();
    scene.user.clickFormat();
    QCOMPARE(scene.camera->connectionCount(), before);
    QCOMPARE(scene.user.table().rowCount(), 3);
}

void InterplayTest::linkLostDuringABrowseShowsAfterTheLastDetails()
{
    Scene scene;
    scene.link();
    scene.camera->holdFiles({"a.mp4", "b.mp4"});
    scene.camera->on(fake::listTarget, [&scene](support::Peer& peer) {
        loseLinkMeanwhile(scene);
        peer.send(fake::withLength(fake::fileList({"a.mp4", "b.mp4"})));
    });
    scene.user.clickBrowse();
    QCOMPARE(scene.user.names(), (QStringList{"a.mp4", "b.mp4"}));
    QCOMPARE(scene.user.row(1).last(), QString("37s"));
    QVERIFY(scene.user.showsLinkSuccess()); // the loss is still queued for the window
    QTRY_VERIFY(scene.user.showsLinkFail());
}

void InterplayTest::heartbeatIsAnsweredWhileTheWindowWaitsForTheCamera()
{
    Scene scene;
    scene.link();
    scene.camera->holdFiles({"a.mp4"});
    const fake::Module::Link control = scene.control->link();
    const fake::Module::Link ground = scene.ground->link();
    scene.camera->on(fake::countTarget, [&](support::Peer& peer) {
        control.send(heartbeat);
        ground.send(groundHeartbeat);
        peer.waitUntil([&] {
            return control.received() == heartbeatAnswer && ground.received() == heartbeatAnswer;
        });
        peer.send(fake::withLength("=\"1\";"));
    });
    scene.user.clickBrowse();
    QCOMPARE(scene.user.names(), QStringList{"a.mp4"});
}

void InterplayTest::twoPairsOfLinksBothAnswer()
{
    Scene scene;
    scene.linkTwice();
    if (QTest::currentTestFailed()) {
        return; // the links used below do not exist
    }
    const fake::Module& control = *scene.control;
    const fake::Module& ground = *scene.ground;

    for (int beat = 1; beat <= 3; ++beat) {
        for (const int link : {2, 4}) {
            control[link].send(heartbeat);
            QTRY_COMPARE(control[link].received(), heartbeatAnswer.repeated(beat));
        }
        for (const int link : {1, 3}) {
            ground[link].send(groundHeartbeat);
            QTRY_COMPARE(ground[link].received(), heartbeatAnswer.repeated(beat));
        }
    }
    QVERIFY(scene.user.showsLinkSuccess());
    control[2].send(versionReport);
    QTRY_COMPARE(scene.user.versions(), (QStringList{"v7", "v3", "v6", "v1", "v0.1"}));
    control[4].send(QByteArray::fromHex("aaaf000901000100020003000400"));
    QTRY_COMPARE(scene.user.versions(), (QStringList{"v1", "v0.01", "v0.02", "v0.03", "v0.04"}));
}

void InterplayTest::eitherPairMovesTheStatus()
{
    Scene scene;
    scene.linkTwice();
    if (QTest::currentTestFailed()) {
        return; // the links used below do not exist
    }
    const fake::Module& control = *scene.control;
    control[2].close();
    QTRY_VERIFY(scene.user.showsLinkFail());
    control[4].send(heartbeat);
    QTRY_VERIFY(scene.user.showsLinkSuccess());
    control[4].close();
    QTRY_VERIFY(scene.user.showsLinkFail());
    QTRY_COMPARE(control.links().size(), 2);
}

void InterplayTest::downloadGoesOnBesideAFreshPairOfLinks()
{
    Scene scene({"a.mp4"});
    scene.downloadUntilStalled({0}, "a.mp4");
    scene.loseLink();
    scene.user.clickLink();
    QVERIFY(scene.user.showsLinkSuccess());
    QVERIFY(!scene.user.canDownload());
    scene.finishDownload("a.mp4");
}

BELUN_NETWORK_TEST(InterplayTest)
#include "InterplayTest.moc"
