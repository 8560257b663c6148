// Where a download is saved on the local disk, and where it never is.
#include "download/LocalFile.h"

#include "tests/download/DownloadRecorder.h"
#include "tests/kit/Lease.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"

#include <algorithm>
#include <csignal>

#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QTemporaryDir>

using support::Peer;
using support::ScriptedServer;

namespace {

constexpr char address[] = "192.168.1.120";
constexpr quint16 port = 80;
const int stopLimit = 500 * support::timeFactor(); // milliseconds

/// Returns the paths of everything in the home folder, or in its subfolder `below`, relative to the
/// home folder and as bytes. Folders end in a slash.
QList<QByteArray> homeContent(const QByteArray& below = QByteArray())
{
    QList<QByteArray> paths;
    const QByteArray folder = QDir::homePath().toUtf8() + "/" + below;
    DIR* directory = ::opendir(folder);
    while (const dirent* entry = directory != nullptr ? ::readdir(directory) : nullptr) {
        const QByteArray name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        struct stat status = {};
        ::lstat(folder + name, &status);
        if (S_ISDIR(status.st_mode)) {
            paths.append(below + name + "/");
            paths.append(homeContent(below + name + "/"));
        } else {
            paths.append(below + name);
        }
    }
    if (directory != nullptr) {
        ::closedir(directory);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

QByteArray inHome(const QByteArray& path)
{
    return QDir::homePath().toUtf8() + "/" + path;
}

QByteArray contentOf(const QByteArray& path)
{
    const int descriptor = ::open(inHome(path), O_RDONLY);
    char buffer[1000];
    const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
    ::close(descriptor);
    return count < 0 ? QByteArray("no such file") : QByteArray(buffer, static_cast<int>(count));
}

void write(const QByteArray& path, const QByteArray& bytes)
{
    const int descriptor = ::open(inHome(path), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const ssize_t count =
        ::write(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    ::close(descriptor);
    QCOMPARE(count, static_cast<ssize_t>(bytes.size()));
}

unsigned modeOf(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(inHome(path), &status) == 0 ? status.st_mode & 07777U : 0U;
}

/// Creates a socket in the file system. Returns whether that succeeded.
bool bindLocalSocket(const QByteArray& path)
{
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    qstrncpy(place.sun_path, path.constData(), sizeof place.sun_path);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool bound =
        ::bind(descriptor, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
    ::close(descriptor);
    return bound;
}

/// A camera that serves "new content" under every name.
class Camera
{
public:
    ScriptedServer server{ScriptedServer::Script([](Peer& peer) {
                              peer.receiveUntil("Connection:close\r\n\r\n");
                              peer.send("HTTP/1.1 200 OK\r\nContent-Length: 11\r\n\r\nnew content");
                          }),
                          address, port};
};

/// The file mode mask of the process while this object exists.
class ModeMask
{
public:
    explicit ModeMask(mode_t mask) : m_before(::umask(mask)) {}
    ~ModeMask() { ::umask(m_before); }
    ModeMask(const ModeMask&) = delete;
    ModeMask& operator=(const ModeMask&) = delete;

private:
    mode_t m_before;
};

/// A folder created and removed by its byte name, whatever the encoding.
class Folder
{
public:
    explicit Folder(QByteArray path) : m_path(std::move(path))
    {
        made = ::mkdir(m_path, 0700) == 0;
    }
    ~Folder() { ::rmdir(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    bool made = false;

private:
    QByteArray m_path;
};

/// A signal that is blocked in this thread, and in the threads that it starts, while this object
/// exists. Number 0 blocks no signal.
class BlockedSignal
{
public:
    explicit BlockedSignal(int number)
    {
        sigset_t blocked;
        sigemptyset(&blocked);
        if (number != 0) {
            sigaddset(&blocked, number);
        }
        ::pthread_sigmask(SIG_BLOCK, &blocked, &m_before);
    }
    ~BlockedSignal() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    BlockedSignal(const BlockedSignal&) = delete;
    BlockedSignal& operator=(const BlockedSignal&) = delete;

private:
    sigset_t m_before;
};

/// Creates a recording whose content is "old" and returns its path.
QByteArray oldRecording()
{
    QDir::home().mkpath("Desktop/DCIM");
    write("Desktop/DCIM/a.mp4", "old");
    return inHome("Desktop/DCIM/a.mp4");
}

/// A download of a recording that is under a lease.
struct LeasedDownload
{
    /// Starts the download and returns whether it waits for the end of the lease.
    bool startsToWait()
    {
        download.start();
        return lease.waitUntilWanted() && watch.waitUntilAsleep();
    }

    support::Lease lease{oldRecording()};
    Camera camera;
    Download download{"a.mp4"};
    support::SleepWatch watch{download.thread}; // created before the thread starts
};

} // namespace

class LocalFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void existingLatin1DesktopIsUsed();
    void desktopUnderItsNativeNameOnlyIsUsed_data();
    void desktopUnderItsNativeNameOnlyIsUsed();
    void latin1DesktopIsPreferredToTheNativeOne();
    void missingDesktopIsNamedInLatin1();
    void bareFileNamesAreRecognised_data();
    void bareFileNamesAreRecognised();
    void missingFolderIsCreated();
    void modesAreOpenExceptForTheMask_data();
    void modesAreOpenExceptForTheMask();
    void longerFileKeepsItsTail();
    void shorterFileIsReplaced();
    void existingFileKeepsItsMode();
    void failedDownloadLeavesAnExistingFileAlone();
    void folderMayBeALink();
    void danglingLinkIsAFailure();
    void fileInPlaceOfTheFolderIsAFailure();
    void folderUnderTheRecordingsNameIsAFailure();
    void linkUnderTheRecordingsNameIsAFailure();
    void pipeUnderTheRecordingsNameIsAFailure();
    void deviceUnderTheRecordingsNameIsAFailure();
    void openingAFileUnderALeaseWaits();
    void stopEndsTheWaitForALease_data();
    void stopEndsTheWaitForALease();
    void missingDesktopIsAFailureAndCreatesNothing();
    void desktopWithAnotherNameIsFound_data();
    void desktopWithAnotherNameIsFound();
    void desktopInLatin1IsPreferredToTheNativeOne();
    void localNameIsLatin1_data();
    void localNameIsLatin1();
    void hostileNameIsFetchedButNotWritten_data();
    void hostileNameIsFetchedButNotWritten();
    void oddButBareNameIsWrittenInTheFolder_data();
    void oddButBareNameIsWrittenInTheFolder();

private:
    static void setDesktop(const QByteArray& name);
};

void LocalFileTest::init()
{
    const QDir home(QDir::homePath());
    for (const QFileInfo& entry : home.entryInfoList(QDir::AllEntries | QDir::Hidden |
                                                     QDir::System | QDir::NoDotAndDotDot)) {
        if (entry.isDir() && !entry.isSymLink()) {
            QDir(entry.filePath()).removeRecursively();
        } else {
            QFile::remove(entry.filePath());
        }
    }
    // Qt cannot handle names that are not UTF-8.
    const QByteArray latin1Desktop = inHome("\xC1rea");
    ::unlink(latin1Desktop + "/DCIM/a.mp4");
    ::rmdir(latin1Desktop + "/DCIM");
    ::rmdir(latin1Desktop);
    QVERIFY(home.mkdir("Desktop"));
}

void LocalFileTest::setDesktop(const QByteArray& name)
{
    QVERIFY(QDir::home().mkpath(".config"));
    write(".config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/" + name + "\"\n");
}

void LocalFileTest::existingLatin1DesktopIsUsed()
{
    const QTemporaryDir base;
    QCOMPARE(download::recordingsFolder(base.path()), base.path().toLatin1() + "/DCIM/");
}

void LocalFileTest::desktopUnderItsNativeNameOnlyIsUsed_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Latin letters with an accent") << QString::fromUtf8("Área de Trabalho");
    QTest::newRow("Chinese") << QString::fromUtf8("桌面");
}

void LocalFileTest::desktopUnderItsNativeNameOnlyIsUsed()
{
    QFETCH(QString, name);
    const QTemporaryDir base;
    const QString desktop = base.path() + "/" + name;
    const Folder native(desktop.toUtf8());
    QVERIFY(native.made);
    QCOMPARE(download::recordingsFolder(desktop), desktop.toUtf8() + "/DCIM/");
}

void LocalFileTest::latin1DesktopIsPreferredToTheNativeOne()
{
    const QTemporaryDir base;
    const QString desktop = base.path() + QString::fromUtf8("/Área");
    const QByteArray latin1Path = base.path().toLatin1() + "/\xC1rea";
    const Folder native(desktop.toUtf8());
    const Folder latin1(latin1Path);
    QVERIFY(native.made);
    QVERIFY(latin1.made);
    QCOMPARE(download::recordingsFolder(desktop), latin1Path + "/DCIM/");
}

void LocalFileTest::missingDesktopIsNamedInLatin1()
{
    const QTemporaryDir base;
    QCOMPARE(download::recordingsFolder(base.path() + QString::fromUtf8("/Área")),
             base.path().toLatin1() + "/\xC1rea/DCIM/");
}

void LocalFileTest::bareFileNamesAreRecognised_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("bare");
    QTest::newRow("recording") << QByteArray("2021_0101_000000_01.mp4") << true;
    QTest::newRow("dots inside") << QByteArray("a..b") << true;
    QTest::newRow("leading dot") << QByteArray(".a") << true;
    QTest::newRow("three dots") << QByteArray("...") << true;
    QTest::newRow("backslash") << QByteArray("a\\b") << true;
    QTest::newRow("space") << QByteArray(" ") << true;
    QTest::newRow("empty") << QByteArray("") << false;
    QTest::newRow("the folder") << QByteArray(".") << false;
    QTest::newRow("the folder above") << QByteArray("..") << false;
    QTest::newRow("slash inside") << QByteArray("a/b") << false;
    QTest::newRow("slash in front") << QByteArray("/a") << false;
    QTest::newRow("trailing slash") << QByteArray("a/") << false;
    QTest::newRow("zero byte inside") << QByteArray("a\0b", 3) << false;
    QTest::newRow("trailing zero byte") << QByteArray("..\0", 3) << false;
}

void LocalFileTest::bareFileNamesAreRecognised()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, bare);
    QCOMPARE(download::isBareFileName(name), bare);
}

void LocalFileTest::missingFolderIsCreated()
{
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(homeContent(), QList<QByteArray>({"Desktop/", "Desktop/DCIM/", "Desktop/DCIM/a.mp4"}));
    QCOMPARE(contentOf("Desktop/DCIM/a.mp4"), QByteArray("new content"));
}

void LocalFileTest::modesAreOpenExceptForTheMask_data()
{
    QTest::addColumn<unsigned>("mask");
    QTest::addColumn<unsigned>("mode");
    QTest::newRow("no mask") << 0U << 0777U;
    QTest::newRow("usual mask") << 0022U << 0755U;
}

void LocalFileTest::modesAreOpenExceptForTheMask()
{
    QFETCH(unsigned, mask);
    QFETCH(unsigned, mode);
    const Camera camera;
    Download download("a.mp4");
    {
        const ModeMask set(mask);
        QVERIFY(download.run());
    }
    QCOMPARE(modeOf("Desktop/DCIM"), mode);
    QCOMPARE(modeOf("Desktop/DCIM/a.mp4"), mode);
}

void LocalFileTest::longerFileKeepsItsTail()
{
    QVERIFY(QDir::home().mkdir("Desktop/DCIM"));
    write("Desktop/DCIM/a.mp4", "old content longer content");
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("Desktop/DCIM/a.mp4"), QByteArray("new content longer content"));
}

void LocalFileTest::shorterFileIsReplaced()
{
    QVERIFY(QDir::home().mkdir("Desktop/DCIM"));
    write("Desktop/DCIM/a.mp4", "old");
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("Desktop/DCIM/a.mp4"), QByteArray("new content"));
}

void LocalFileTest::existingFileKeepsItsMode()
{
    QVERIFY(QDir::home().mkdir("Desktop/DCIM"));
    write("Desktop/DCIM/a.mp4", "old");
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(modeOf("Desktop/DCIM/a.mp4"), 0600U);
}

void LocalFileTest::failedDownloadLeavesAnExistingFileAlone()
{
    QVERIFY(QDir::home().mkdir("Desktop/DCIM"));
    write("Desktop/DCIM/a.mp4", "old");
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("connect failed, return: -1\n"));
    QCOMPARE(contentOf("Desktop/DCIM/a.mp4"), QByteArray("old"));
}

void LocalFileTest::folderMayBeALink()
{
    QVERIFY(QDir::home().mkdir("elsewhere"));
    QCOMPARE(::symlink("../elsewhere", inHome("Desktop/DCIM")), 0);
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(homeContent(),
             QList<QByteArray>({"Desktop/", "Desktop/DCIM", "elsewhere/", "elsewhere/a.mp4"}));
    QCOMPARE(contentOf("elsewhere/a.mp4"), QByteArray("new content"));
}

void LocalFileTest::danglingLinkIsAFailure()
{
    QCOMPARE(::symlink("../nowhere", inHome("Desktop/DCIM")), 0);
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(homeContent(), QList<QByteArray>({"Desktop/", "Desktop/DCIM"}));
    QCOMPARE(download.recorder.received, QList<qint64>({11}));
}

void LocalFileTest::fileInPlaceOfTheFolderIsAFailure()
{
    write("Desktop/DCIM", "a file");
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(contentOf("Desktop/DCIM"), QByteArray("a file"));
}

void LocalFileTest::folderUnderTheRecordingsNameIsAFailure()
{
    QVERIFY(QDir::home().mkpath("Desktop/DCIM/a.mp4"));
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(download.recorder.received, QList<qint64>({11}));
    QCOMPARE(download.recorder.finished, 1);
}

void LocalFileTest::linkUnderTheRecordingsNameIsAFailure()
{
    QVERIFY(QDir::home().mkpath("Desktop/DCIM"));
    write("outside", "kept");
    QCOMPARE(::symlink("../../outside", inHome("Desktop/DCIM/a.mp4")), 0);
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(contentOf("outside"), QByteArray("kept"));
    QCOMPARE(download.recorder.received, QList<qint64>({11}));
}

void LocalFileTest::pipeUnderTheRecordingsNameIsAFailure()
{
    QVERIFY(QDir::home().mkpath("Desktop/DCIM"));
    QCOMPARE(::mkfifo(inHome("Desktop/DCIM/a.mp4"), 0600), 0);
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(download.recorder.received, QList<qint64>({11}));
}

// A socket is used in place of a device file, which only root can create.
void LocalFileTest::deviceUnderTheRecordingsNameIsAFailure()
{
    QVERIFY(QDir::home().mkpath("Desktop/DCIM"));
    QVERIFY(bindLocalSocket(inHome("Desktop/DCIM/a.mp4")));
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(download.recorder.received, QList<qint64>({11}));
}

void LocalFileTest::openingAFileUnderALeaseWaits()
{
    LeasedDownload leased;
    QVERIFY(leased.lease.taken());
    QVERIFY(leased.startsToWait());
    QCOMPARE(leased.download.recorder.finished, 0);
    QCOMPARE(contentOf("Desktop/DCIM/a.mp4"), QByteArray("old"));
    leased.lease.giveUp();
    QVERIFY(leased.download.waitUntilFinished());
    QCOMPARE(leased.download.output.text(), QByteArray());
    QCOMPARE(contentOf("Desktop/DCIM/a.mp4"), QByteArray("new content"));
}

void LocalFileTest::stopEndsTheWaitForALease_data()
{
    QTest::addColumn<bool>("blocksTheSignal");
    QTest::newRow("ordinary program") << false;
    QTest::newRow("program that blocks SIGURG") << true;
}

void LocalFileTest::stopEndsTheWaitForALease()
{
    QFETCH(bool, blocksTheSignal);
    const BlockedSignal block(blocksTheSignal ? SIGURG : 0);
    LeasedDownload leased;
    QVERIFY(leased.lease.taken());
    QVERIFY(leased.startsToWait());
    QElapsedTimer time;
    time.start();
    leased.download.thread.stopAndWait();
    QVERIFY2(time.elapsed() < stopLimit, qPrintable(QString::number(time.elapsed()) + " ms"));
    QCOMPARE(leased.download.output.text(), QByteArray());
    QCOMPARE(contentOf("Desktop/DCIM/a.mp4"), QByteArray("old"));
}

void LocalFileTest::missingDesktopIsAFailureAndCreatesNothing()
{
    QVERIFY(QDir::home().rmdir("Desktop"));
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(homeContent(), QList<QByteArray>());
    QCOMPARE(download.recorder.received, QList<qint64>({11}));
    QCOMPARE(download.recorder.finished, 1);
}

void LocalFileTest::desktopWithAnotherNameIsFound_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("plain") << QByteArray("Schreibtisch");
    QTest::newRow("Latin letters with an accent") << QByteArray("Área de Trabalho");
    QTest::newRow("Chinese") << QByteArray("桌面");
}

void LocalFileTest::desktopWithAnotherNameIsFound()
{
    QFETCH(QByteArray, name);
    setDesktop(name);
    QCOMPARE(::mkdir(inHome(name), 0700), 0);
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf(name + "/DCIM/a.mp4"), QByteArray("new content"));
    QVERIFY(!QDir::home().exists("Desktop/DCIM"));
}

void LocalFileTest::desktopInLatin1IsPreferredToTheNativeOne()
{
    setDesktop("Área");
    QCOMPARE(::mkdir(inHome("Área"), 0700), 0);
    QCOMPARE(::mkdir(inHome("\xC1rea"), 0700), 0);
    const Camera camera;
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(contentOf("\xC1rea/DCIM/a.mp4"), QByteArray("new content"));
    QCOMPARE(contentOf("Área/DCIM/a.mp4"), QByteArray("no such file"));
}

void LocalFileTest::localNameIsLatin1_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("local");
    QTest::newRow("Latin-1 letter") << QString::fromUtf8("é.mp4") << QByteArray("\xE9.mp4");
    QTest::newRow("other letter") << QString::fromUtf8("桌.mp4") << QByteArray("?.mp4");
}

void LocalFileTest::localNameIsLatin1()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, local);
    const Camera camera;
    Download download(name);
    QVERIFY(download.run());
    QCOMPARE(contentOf("Desktop/DCIM/" + local), QByteArray("new content"));
    QCOMPARE(::unlink(inHome("Desktop/DCIM/" + local)), 0);
}

void LocalFileTest::hostileNameIsFetchedButNotWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("empty") << "" << QByteArray("");
    QTest::newRow("the folder") << "." << QByteArray(".");
    QTest::newRow("the folder above") << ".." << QByteArray("..");
    QTest::newRow("a file above") << "../precious" << QByteArray("../precious");
    QTest::newRow("an absolute path") << "/tmp/evil" << QByteArray("/tmp/evil");
    QTest::newRow("a file in a folder") << "sub/evil" << QByteArray("sub/evil");
    QTest::newRow("trailing slash") << "evil/" << QByteArray("evil/");
    QTest::newRow("zero byte") << QString::fromLatin1("evil\0.mp4", 9) << QByteArray("evil");
    QTest::newRow("zero byte after dots")
        << QString::fromLatin1("../precious\0", 12) << QByteArray("../precious");
}

void LocalFileTest::hostileNameIsFetchedButNotWritten()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, target);
    QVERIFY(QDir::home().mkpath("Desktop/DCIM/sub"));
    write("Desktop/precious", "the user's own");
    const Camera camera;
    Download download(name);
    QVERIFY(download.run());
    QVERIFY2(camera.server.received(0).startsWith("GET http://192.168.1.120/sd/DCIM/100ZEPNA/" +
                                                  target + " HTTP/1.1\r\n"),
             camera.server.received(0).constData());
    QCOMPARE(download.output.text(), QByteArray("Create file failed\n"));
    QCOMPARE(download.recorder.received, QList<qint64>({11}));
    QCOMPARE(download.recorder.finished, 1);
    QCOMPARE(int{download.thread.respHeader.status_code}, 200);
    QCOMPARE(homeContent(), QList<QByteArray>({"Desktop/", "Desktop/DCIM/", "Desktop/DCIM/sub/",
                                               "Desktop/precious"}));
    QCOMPARE(contentOf("Desktop/precious"), QByteArray("the user's own"));
    QVERIFY(!QFile::exists("/tmp/evil"));
}

void LocalFileTest::oddButBareNameIsWrittenInTheFolder_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("leading dash") << QByteArray("-rf");
    QTest::newRow("leading dots") << QByteArray("..a");
    QTest::newRow("backslash") << QByteArray("..\\a");
    QTest::newRow("percent") << QByteArray("%s%n%2e%2e%2f");
    QTest::newRow("line end") << QByteArray("a\r\nb");
    QTest::newRow("shell") << QByteArray("$(id);`id`|*?");
}

void LocalFileTest::oddButBareNameIsWrittenInTheFolder()
{
    QFETCH(QByteArray, name);
    const Camera camera;
    Download download(QString::fromLatin1(name));
    QVERIFY(download.run());
    QCOMPARE(homeContent(),
             QList<QByteArray>({"Desktop/", "Desktop/DCIM/", "Desktop/DCIM/" + name}));
    QCOMPARE(contentOf("Desktop/DCIM/" + name), QByteArray("new content"));
}

BELUN_NETWORK_TEST(LocalFileTest)
#include "LocalFileTest.moc"
