// Tests closing the window in every state of its threads, both in this process and in the program
// run as a separate process.
#include "tests/kit/DrivenProcess.h"
#include "tests/kit/LinkedScene.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/TcpTable.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QProcessEnvironment>
#include <QTemporaryDir>

namespace {

using Texts = QList<QByteArray>;

const qint64 closingLimit = 2000 * support::timeFactor(); // milliseconds

/// An address where one connection, the window's probe, succeeds and further attempts get no
/// answer.
class AddressForAProbe
{
public:
    explicit AddressForAProbe(const char* address)
        : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const int on = 1;
        ::setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        const sockaddr_in place = support::socketAddress(address, fake::modulePort);
        if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
            ::listen(m_listener, 0) != 0) {
            qFatal("cannot listen on %s", address);
        }
    }
    ~AddressForAProbe() { ::close(m_listener); }
    AddressForAProbe(const AddressForAProbe&) = delete;
    AddressForAProbe& operator=(const AddressForAProbe&) = delete;

private:
    int m_listener;
};

/// Returns how many sockets and recordings a process has open.
int openDescriptors(qint64 process)
{
    const QDir folder(QStringLiteral("/proc/%1/fd").arg(process));
    int count = 0;
    for (const QString& name : folder.entryList(QDir::AllEntries | QDir::System)) {
        std::array<char, 4096> target{};
        const ssize_t size = ::readlink(QFile::encodeName(folder.filePath(name)).constData(),
                                        target.data(), target.size());
        const QByteArray text(target.data(), static_cast<int>(std::max<ssize_t>(size, 0)));
        count += text.startsWith("socket:") || text.contains("/DCIM/") ? 1 : 0;
    }
    return count;
}

/// The program, with its window operated from inside.
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

    /// Sends a command and checks that the program has confirmed it.
    void obey(const QByteArray& command) { QCOMPARE(tell(command), QByteArray("done\n")); }

private:
    QTemporaryDir m_folder;
};

} // namespace

class ClosingTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void idleWindow();
    void afterAFailedLink();
    void atOnceAfterTheLinkClick();
    void linkedWindow();
    void twoPairsOfLinks();
    void linkThreadsConnectingToARefusingAddress();
    void controlThreadConnectingToASilentAddress();
    void groundThreadConnectingToASilentAddress();
    void linkThreadReconnectingAgainAndAgain();
    void downloadConnectingToASilentCamera();
    void downloadWithoutAnAnswer();
    void downloadStalledInTheHead();
    void downloadStalledInTheBody();
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

private:
    /// Destroys the window and checks that this takes less than closingLimit.
    void destroyInTime();
    /// Starts a download that stalls after these bytes. Returns when the camera waits at the gate.
    void startDownload(const QByteArray& bytes);

    std::unique_ptr<fake::Gate> gate; // outlives the camera that waits at it
    std::unique_ptr<LinkedScene> scene;
};

void ClosingTest::init()
{
    gate = std::make_unique<fake::Gate>();
    scene = std::make_unique<LinkedScene>();
}

void ClosingTest::cleanup()
{
    gate->open();
    if (scene->camera) {
        QCOMPARE(scene->camera->errors(), Texts());
    }
    scene.reset();
    QDir(QDir::homePath() + QStringLiteral("/Desktop/DCIM")).removeRecursively();
}

void ClosingTest::destroyInTime()
{
    QElapsedTimer clock;
    clock.start();
    scene->user->destroy();
    const qint64 elapsed = clock.elapsed();
    QVERIFY2(elapsed < closingLimit, qPrintable(QString::number(elapsed) + " ms"));
}

void ClosingTest::startDownload(const QByteArray& bytes)
{
    scene->camera->on(fake::downloadTarget, [this, bytes](support::Peer& peer) {
        peer.send(bytes);
        gate->pass();
    });
    scene->user->chooseRows({0});
    scene->user->clickDownload();
    QTRY_VERIFY(gate->isReached());
    QVERIFY(!scene->user->canDownload());
}

void ClosingTest::idleWindow()
{
    destroyInTime();
}

void ClosingTest::afterAFailedLink()
{
    scene->ground.reset();
    scene->user->clickLink();
    QVERIFY(scene->user->showsLinkFail());
    destroyInTime();
}

void ClosingTest::atOnceAfterTheLinkClick()
{
    scene->user->clickLink();
    QVERIFY(scene->user->showsLinkSuccess());
    destroyInTime();
}

void ClosingTest::linkedWindow()
{
    scene->link();
    scene->control->link().send(QByteArray::fromHex("aaaf04010000"));
    QTRY_COMPARE(scene->control->link().received(), QByteArray::fromHex("aaaf0401015f"));
    destroyInTime();
    // The modules notice the end of their links.
    QTRY_COMPARE(scene->control->links(), QList<int>());
    QTRY_COMPARE(scene->ground->links(), QList<int>());
}

void ClosingTest::twoPairsOfLinks()
{
    scene->link();
    scene->control->link().close();
    QTRY_VERIFY(scene->user->showsLinkFail());
    scene->user->clickLink();
    QTRY_COMPARE(scene->control->links().size(), 2);
    QTRY_COMPARE(scene->ground->links().size(), 2);
    destroyInTime();
    QTRY_COMPARE(scene->control->links(), QList<int>());
    QTRY_COMPARE(scene->ground->links(), QList<int>());
}

void ClosingTest::linkThreadsConnectingToARefusingAddress()
{
    scene->link();
    scene->control.reset();
    scene->ground.reset();
    QTRY_VERIFY(scene->user->showsLinkFail());
    destroyInTime();
}

void ClosingTest::controlThreadConnectingToASilentAddress()
{
    scene->control.reset();
    const AddressForAProbe control(fake::controlAddress);
    scene->user->clickLink();
    QVERIFY(scene->user->showsLinkSuccess());
    QTRY_VERIFY(support::isConnectPending(fake::controlAddress, fake::modulePort));
    destroyInTime();
}

void ClosingTest::groundThreadConnectingToASilentAddress()
{
    scene->ground.reset();
    const AddressForAProbe ground(fake::groundAddress);
    scene->user->clickLink();
    QVERIFY(scene->user->showsLinkSuccess());
    QTRY_VERIFY(support::isConnectPending(fake::groundAddress, fake::modulePort));
    destroyInTime();
}

void ClosingTest::linkThreadReconnectingAgainAndAgain()
{
    scene->control.reset();
    support::ScriptedServer closing(support::ScriptedServer::Script([](support::Peer&) {}),
                                    fake::controlAddress, fake::modulePort);
    scene->user->clickLink();
    QVERIFY(closing.connectionCount() >= 1);
    QTRY_VERIFY(closing.connectionCount() >= 10);
    destroyInTime();
}

void ClosingTest::downloadConnectingToASilentCamera()
{
    scene->linkAndBrowse({"a.mp4"});
    scene->camera.reset();
    const support::SilentAddress camera(fake::cameraAddress, fake::cameraPort);
    scene->user->chooseRows({0});
    scene->user->clickDownload();
    QTRY_VERIFY(support::isConnectPending(fake::cameraAddress, fake::cameraPort));
    QCOMPARE(scene->user->downloadCount(), QStringLiteral("1/1"));
    destroyInTime();
}

void ClosingTest::downloadWithoutAnAnswer()
{
    scene->linkAndBrowse({"a.mp4"});
    startDownload(QByteArray());
    destroyInTime();
}

void ClosingTest::downloadStalledInTheHead()
{
    scene->linkAndBrowse({"a.mp4"});
    startDownload("HTTP/1.1 200 OK\r\nContent-Le");
    destroyInTime();
}

void ClosingTest::downloadStalledInTheBody()
{
    scene->linkAndBrowse({"a.mp4"});
    startDownload("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
    QTRY_COMPARE(scene->user->progressBar().value(), 4);
    destroyInTime();
}

void ClosingTest::downloadInFlight()
{
    scene->linkAndBrowse({"a.mp4", "b.mp4"});
    std::atomic<bool> goOn{true};
    scene->camera->on(fake::downloadTarget, [&goOn](support::Peer& peer) {
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 2000000000\r\n\r\n");
        for (int piece = 0; piece < 10000 && goOn; ++piece) {
            peer.send(QByteArray(4096, 'x'));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    scene->user->chooseRows({0, 1});
    scene->user->clickDownload();
    QTRY_VERIFY(scene->user->progressBar().value() > 0);
    destroyInTime();
    goOn = false;
    // The next file is not started.
    QCOMPARE(scene->camera->targets(), Texts{QByteArray(fake::downloadTarget) + "b.mp4"});
    scene->camera.reset(); // its thread uses local variables of this function
}

void ClosingTest::downloadStalledBesideRefusedAndSilentLinks()
{
    scene->ground.reset();
    const AddressForAProbe ground(fake::groundAddress);
    scene->user->clickLink();
    QVERIFY(scene->user->showsLinkSuccess());
    scene->camera->holdFiles({"a.mp4"});
    scene->user->clickBrowse();
    startDownload("HTTP/1.1 200 OK\r\n");
    scene->control.reset();
    QTRY_VERIFY(scene->user->showsLinkFail());
    QTRY_VERIFY(support::isConnectPending(fake::groundAddress, fake::modulePort));
    destroyInTime();
}

void ClosingTest::descriptorsAreReleasedWithTheWindow()
{
    scene->user->destroy();
    const int before = openDescriptors(::getpid());
    scene->user.emplace();
    scene->link();
    for (int loss = 0; loss < 5; ++loss) {
        scene->control->link().close();
        QTRY_VERIFY(scene->user->showsLinkFail());
        QTRY_VERIFY(scene->control->links().contains(loss + 2));
    }
    scene->control->link().send(QByteArray::fromHex("aaaf04010000"));
    QTRY_VERIFY(scene->user->showsLinkSuccess());
    scene->camera->holdFiles({"a.mp4"});
    scene->camera->answer(fake::downloadTarget, "recording");
    scene->user->clickBrowse();
    scene->user->chooseRows({0});
    // The window's sockets are the control link, its five lost connections and the ground link. The
    // devices' sockets are those of the two current links.
    QTRY_COMPARE(openDescriptors(::getpid()), before + 7 + 2);
    for (int download = 1; download <= 3; ++download) {
        QTRY_VERIFY(scene->user->canDownload());
        scene->user->clickDownload();
        QVERIFY(!scene->user->isIdle());
        QTRY_VERIFY(scene->user->isIdle());
        QTRY_COMPARE(openDescriptors(::getpid()), before + 7 + 2 + 2 * download);
    }
    scene->user->destroy();
    QTRY_COMPARE(openDescriptors(::getpid()), before);
}

void ClosingTest::programClosedIdle()
{
    Program program;
    program.closeInTime();
}

void ClosingTest::programClosedLinked()
{
    Program program;
    program.obey("click pushButtonLinkBELUN");
    QTRY_COMPARE(scene->control->links(), QList<int>{1});
    QTRY_COMPARE(scene->ground->links(), QList<int>{1});
    program.closeInTime();
}

void ClosingTest::programClosedWithItsModulesGone()
{
    Program program;
    program.obey("click pushButtonLinkBELUN");
    QTRY_COMPARE(scene->control->links(), QList<int>{1});
    scene->control.reset();
    scene->ground.reset();
    program.closeInTime();
}

void ClosingTest::programClosedWithAStalledDownload()
{
    scene->camera->holdFiles({"a.mp4"});
    scene->camera->on(fake::downloadTarget, [this](support::Peer&) { gate->pass(); });
    Program program;
    program.obey("click pushButtonLinkBELUN");
    program.obey("click pushButtonEnterTFcard");
    program.obey("choose 0");
    program.obey("click pushButtonDownloadFile");
    QTRY_VERIFY(gate->isReached());
    program.closeInTime();
}

void ClosingTest::programSurvivesADownloadFromACameraSwitchedOff()
{
    scene->camera->holdFiles({"a.mp4"});
    Program program;
    program.obey("click pushButtonLinkBELUN");
    program.obey("click pushButtonEnterTFcard");
    program.obey("choose 0");
    scene->camera.reset();
    // The request is written although the connection was refused: an unhandled SIGPIPE would end
    // the program here.
    program.obey("click pushButtonDownloadFile");
    // Printed immediately although the output is a pipe.
    QTRY_VERIFY(program.output().contains("connect failed, return: -1\n"));
    program.obey("click checkBoxSelectAllFiles");
    program.closeInTime();
}

void ClosingTest::programSurvivesAModuleThatResetsAfterItsHeartbeats()
{
    Program program;
    program.obey("click pushButtonLinkBELUN");
    QTRY_COMPARE(scene->control->links(), QList<int>{1});
    // Many heartbeats, each filling a receive, so that answers are still sent after the reset.
    const QByteArray heartbeat = QByteArray::fromHex("aaaf04010000") + QByteArray(94, '\0');
    for (int loss = 0; loss < 5; ++loss) {
        scene->control->link().send(heartbeat.repeated(500));
        scene->control->link().reset();
        QTRY_COMPARE(scene->control->links(), QList<int>{loss + 2});
    }
    program.obey("click checkBoxSelectAllFiles");
    program.closeInTime();
}

void ClosingTest::programKeepsTheDescriptorsOfLinksAndDownloadsOpen()
{
    scene->camera->holdFiles({"a.mp4"});
    scene->camera->answer(fake::downloadTarget, "recording");
    Program program;
    program.obey("click pushButtonEnterTFcard");
    program.obey("choose 0");
    const int before = openDescriptors(program.id());
    program.obey("click pushButtonLinkBELUN");
    QTRY_COMPARE(scene->control->links(), QList<int>{1});
    QTRY_COMPARE(scene->ground->links(), QList<int>{1});
    QTRY_COMPARE(openDescriptors(program.id()), before + 2);
    for (int loss = 1; loss <= 3; ++loss) {
        scene->control->link().close();
        QTRY_COMPARE(scene->control->links(), QList<int>{1 + loss});
        QTRY_COMPARE(openDescriptors(program.id()), before + 2 + loss);
    }
    // When the second answer is sent, the window has been notified of the first heartbeat.
    for (int beat = 1; beat <= 2; ++beat) {
        scene->control->link().send(QByteArray::fromHex("aaaf04010000"));
        QTRY_COMPARE(scene->control->link().received(),
                     QByteArray::fromHex("aaaf0401015f").repeated(beat));
    }
    // Each download keeps one socket and one file open.
    for (int download = 1; download <= 2; ++download) {
        QTRY_COMPARE(scene->camera->heads().size(), download + 2);
        program.obey("click pushButtonDownloadFile");
        QTRY_COMPARE(openDescriptors(program.id()), before + 2 + 3 + 2 * download);
    }
    program.closeInTime();
}

BELUN_NETWORK_TEST(ClosingTest)
#include "ClosingTest.moc"
