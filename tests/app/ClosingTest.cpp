// Tests closing the window in every state of its threads, both in this process and in the program
// run as a separate process.
#include "tests/app/Scene.h"
#include "tests/kit/DrivenProcess.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/TcpTable.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include <unistd.h>

#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <QTemporaryDir>

namespace {

const qint64 closingLimit = 2000 * support::timeFactor(); // milliseconds

/// Returns how many sockets and recordings a process has open.
int openDescriptors(qint64 process)
{
    return support::countDescriptors(
        [](const std::string& name) {
            return name.rfind("socket:", 0) == 0 || name.find("/DCIM/") != std::string::npos;
        },
        std::to_string(process));
}

/// Destroys the window and checks that this takes less than closingLimit.
void destroyInTime(Scene& scene)
{
    QElapsedTimer clock;
    clock.start();
    scene.user.destroy();
    const qint64 elapsed = clock.elapsed();
    QVERIFY2(elapsed < closingLimit, qPrintable(QString::number(elapsed) + " ms"));
}

/// The program, linked with code that operates its window.
class Program : public DrivenProcess
{
public:
    Program() { start(m_folder.path(), QProcessEnvironment::systemEnvironment(), "exec \"$0\""); }

    /// Closes the window and checks that the program ends in time and with status 0.
    void closeInTime()
    {
        QElapsedTimer clock;
        clock.start();
        close();
        QVERIFY2(clock.elapsed() < closingLimit, qPrintable(QString::number(clock.elapsed())));
    }

    /// Sends commands, and checks after each that the program has confirmed it.
    void obey(const Texts& commands)
    {
        for (const QByteArray& command : commands) {
            QCOMPARE(tell(command), QByteArray("done\n"));
        }
    }

private:
    QTemporaryDir m_folder;
};

const QByteArray clickLink = "click pushButtonLinkBELUN";
const QByteArray clickBrowse = "click pushButtonEnterTFcard";
const QByteArray clickDownload = "click pushButtonDownloadFile";
const QByteArray chooseFirstRow = "choose 0";
const QByteArray clickSelectAll = "click checkBoxSelectAllFiles";

} // namespace

class ClosingTest : public QObject
{
    Q_OBJECT

private slots:
    void idleWindow();
    void afterAFailedLink();
    void atOnceAfterTheLinkClick();
    void linkedWindow();
    void twoPairsOfLinks();
    void linkThreadsConnectingToARefusingAddress();
    void linkThreadConnectingToASilentAddress_data();
    void linkThreadConnectingToASilentAddress();
    void linkThreadReconnectingAgainAndAgain();
    void downloadConnectingToASilentCamera();
    void stalledDownload_data();
    void stalledDownload();
    void downloadInFlight();
    void downloadStalledBesideRefusedAndSilentLinks();
    void descriptorsAreReleasedWithTheWindow();

    void programClosedIdle();
    void programClosedLinked();
    void programClosedWithItsModulesGone();
    void programClosedWithAStalledDownload();
    void programSurvivesADownloadFromACameraSwitchedOff();
    void programSurvivesAModuleThatResetsAfterItsHeartbeats();
    void programKeepsTheDescriptorsOfLinksAndDownloadsOpen();
};

void ClosingTest::idleWindow()
{
    Scene scene;
    destroyInTime(scene);
}

void ClosingTest::afterAFailedLink()
{
    Scene scene;
    scene.ground.reset();
    scene.user.clickLink();
    QVERIFY(scene.user.showsLinkFail());
    destroyInTime(scene);
}

void ClosingTest::atOnceAfterTheLinkClick()
{
    Scene scene;
    scene.user.clickLink();
    QVERIFY(scene.user.showsLinkSuccess());
    destroyInTime(scene);
}

void ClosingTest::linkedWindow()
{
    Scene scene;
    scene.link();
    scene.exchangeHeartbeat();
    destroyInTime(scene);
    // The modules notice the end of their links.
    QTRY_COMPARE(scene.control->links(), QList<int>());
    QTRY_COMPARE(scene.ground->links(), QList<int>());
}

void ClosingTest::twoPairsOfLinks()
{
    Scene scene;
    scene.linkTwice();
    destroyInTime(scene);
    QTRY_COMPARE(scene.control->links(), QList<int>());
    QTRY_COMPARE(scene.ground->links(), QList<int>());
}

void ClosingTest::linkThreadsConnectingToARefusingAddress()
{
    Scene scene;
    scene.link();
    scene.control.reset();
    scene.ground.reset();
    QTRY_VERIFY(scene.user.showsLinkFail());
    destroyInTime(scene);
}

void ClosingTest::linkThreadConnectingToASilentAddress_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("control module") << QByteArray(fake::controlAddress);
    QTest::newRow("ground module") << QByteArray(fake::groundAddress);
}

void ClosingTest::linkThreadConnectingToASilentAddress()
{
    QFETCH(QByteArray, address);
    Scene scene;
    (address == fake::controlAddress ? scene.control : scene.ground).reset();
    const support::SilentAddress silent(address, fake::modulePort, true);
    scene.user.clickLink();
    QVERIFY(scene.user.showsLinkSuccess());
    QTRY_VERIFY(support::isConnectPending(address.constData(), fake::modulePort));
    destroyInTime(scene);
}

void ClosingTest::linkThreadReconnectingAgainAndAgain()
{
    Scene scene;
    scene.control.reset();
    support::ScriptedServer closing(support::ScriptedServer::Script([](support::Peer&) {}),
                                    fake::controlAddress, fake::modulePort);
    scene.user.clickLink();
    QVERIFY(closing.connectionCount() >= 1);
    QTRY_VERIFY(closing.connectionCount() >= 10);
    destroyInTime(scene);
}

void ClosingTest::downloadConnectingToASilentCamera()
{
    Scene scene({"a.mp4"});
    scene.camera.reset();
    const support::SilentAddress camera(fake::cameraAddress, fake::cameraPort);
    scene.user.downloadRows({0});
    QTRY_VERIFY(support::isConnectPending(fake::cameraAddress, fake::cameraPort));
    QCOMPARE(scene.user.downloadCount(), QString("1/1"));
    destroyInTime(scene);
}

void ClosingTest::stalledDownload_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("progress");
    QTest::newRow("before the answer") << QByteArray() << 0;
    QTest::newRow("in the head") << QByteArray("HTTP/1.1 200 OK\r\nContent-Le") << 0;
    QTest::newRow("in the body") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf")
                                 << 4;
}

void ClosingTest::stalledDownload()
{
    QFETCH(QByteArray, received);
    QFETCH(int, progress);
    Scene scene({"a.mp4"});
    scene.sendInParts("a.mp4", {received, ""});
    scene.user.downloadRows({0});
    QTRY_VERIFY(scene.gate("a.mp4").isReached());
    QTRY_COMPARE(scene.user.progressBar().value(), progress);
    QVERIFY(!scene.user.canDownload());
    destroyInTime(scene);
}

void ClosingTest::downloadInFlight()
{
    std::atomic<bool> goOn{true};
    Scene scene({"a.mp4", "b.mp4"});
    scene.camera->on(fake::downloadTarget, [&goOn](support::Peer& peer) {
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 2000000000\r\n\r\n");
        for (int piece = 0; piece < 10000 && goOn; ++piece) {
            peer.send(QByteArray(4096, 'x'));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    scene.user.downloadRows({0, 1});
    QTRY_VERIFY(scene.user.progressBar().value() > 0);
    destroyInTime(scene);
    goOn = false;
    // The next file is not started.
    QCOMPARE(scene.camera->targets(), Texts{downloadOf("b.mp4")});
}

void ClosingTest::downloadStalledBesideRefusedAndSilentLinks()
{
    Scene scene;
    scene.ground.reset();
    const support::SilentAddress ground(fake::groundAddress, fake::modulePort, true);
    scene.user.clickLink();
    QVERIFY(scene.user.showsLinkSuccess());
    scene.camera->holdFiles({"a.mp4"});
    scene.user.clickBrowse();
    scene.downloadUntilStalled({0}, "a.mp4");
    scene.control.reset();
    QTRY_VERIFY(scene.user.showsLinkFail());
    QTRY_VERIFY(support::isConnectPending(fake::groundAddress, fake::modulePort));
    destroyInTime(scene);
}

void ClosingTest::descriptorsAreReleasedWithTheWindow()
{
    Scene scene;
    const int before = openDescriptors(::getpid());
    scene.link();
    for (int loss = 0; loss < 5; ++loss) {
        scene.loseLink();
    }
    scene.exchangeHeartbeat();
    QTRY_VERIFY(scene.user.showsLinkSuccess());
    scene.camera->holdFiles({"a.mp4"});
    scene.camera->answer(fake::downloadTarget, "recording");
    scene.user.clickBrowse();
    scene.user.chooseRows({0});
    // The window's sockets are the control link, its five lost connections and the ground link. The
    // devices' sockets are those of the two current links.
    QTRY_COMPARE(openDescriptors(::getpid()), before + 7 + 2);
    for (int download = 1; download <= 3; ++download) {
        QTRY_VERIFY(scene.user.canDownload());
        scene.user.clickDownload();
        QVERIFY(!scene.user.isIdle());
        QTRY_VERIFY(scene.user.isIdle());
        QTRY_COMPARE(openDescriptors(::getpid()), before + 7 + 2 + 2 * download);
    }
    scene.user.destroy();
    QTRY_COMPARE(openDescriptors(::getpid()), before);
}

void ClosingTest::programClosedIdle()
{
    Program program;
    program.closeInTime();
}

void ClosingTest::programClosedLinked()
{
    const Devices devices;
    Program program;
    program.obey({clickLink});
    QTRY_COMPARE(devices.control->links(), QList<int>{1});
    QTRY_COMPARE(devices.ground->links(), QList<int>{1});
    program.closeInTime();
}

void ClosingTest::programClosedWithItsModulesGone()
{
    Devices devices;
    Program program;
    program.obey({clickLink});
    QTRY_COMPARE(devices.control->links(), QList<int>{1});
    devices.control.reset();
    devices.ground.reset();
    program.closeInTime();
}

void ClosingTest::programClosedWithAStalledDownload()
{
    Devices devices;
    devices.camera->holdFiles({"a.mp4"});
    devices.stall("a.mp4");
    Program program;
    program.obey({clickLink, clickBrowse, chooseFirstRow, clickDownload});
    QTRY_VERIFY(devices.gate("a.mp4").isReached());
    program.closeInTime();
}

void ClosingTest::programSurvivesADownloadFromACameraSwitchedOff()
{
    Devices devices;
    devices.camera->holdFiles({"a.mp4"});
    Program program;
    program.obey({clickLink, clickBrowse, chooseFirstRow});
    devices.camera.reset();
    // The request is written although the connection was refused: an unhandled SIGPIPE would end
    // the program here.
    program.obey({clickDownload});
    // Printed immediately although the output is a pipe.
    QTRY_VERIFY(program.output().contains("connect failed, return: -1\n"));
    program.obey({clickSelectAll});
    program.closeInTime();
}

void ClosingTest::programSurvivesAModuleThatResetsAfterItsHeartbeats()
{
    const Devices devices;
    Program program;
    program.obey({clickLink});
    QTRY_COMPARE(devices.control->links(), QList<int>{1});
    // Many heartbeats, each filling a receive, so that answers are still sent after the reset.
    const QByteArray wholeReceive = heartbeat + QByteArray(94, '\0');
    for (int loss = 0; loss < 5; ++loss) {
        devices.control->link().send(wholeReceive.repeated(500));
        devices.control->link().reset();
        QTRY_COMPARE(devices.control->links(), QList<int>{loss + 2});
    }
    program.obey({clickSelectAll});
    program.closeInTime();
}

void ClosingTest::programKeepsTheDescriptorsOfLinksAndDownloadsOpen()
{
    Devices devices;
    devices.camera->holdFiles({"a.mp4"});
    devices.camera->answer(fake::downloadTarget, "recording");
    Program program;
    program.obey({clickBrowse, chooseFirstRow});
    const int before = openDescriptors(program.id());
    program.obey({clickLink});
    QTRY_COMPARE(devices.control->links(), QList<int>{1});
    QTRY_COMPARE(devices.ground->links(), QList<int>{1});
    QTRY_COMPARE(openDescriptors(program.id()), before + 2);
    for (int loss = 1; loss <= 3; ++loss) {
        devices.control->link().close();
        QTRY_COMPARE(devices.control->links(), QList<int>{1 + loss});
        QTRY_COMPARE(openDescriptors(program.id()), before + 2 + loss);
    }
    // When the second answer is sent, the window has been notified of the first heartbeat.
    devices.exchangeHeartbeat();
    devices.exchangeHeartbeat();
    // Each download keeps one socket and one file open.
    for (int download = 1; download <= 2; ++download) {
        QTRY_COMPARE(devices.camera->heads().size(), download + 2);
        program.obey({clickDownload});
        QTRY_COMPARE(openDescriptors(program.id()), before + 2 + 3 + 2 * download);
    }
    program.closeInTime();
}

BELUN_NETWORK_TEST(ClosingTest)
#include "ClosingTest.moc"
