// Where a download is saved on the local disk, and where it never is.
#include "download/LocalFile.h"

#include "tests/download/DownloadScene.h"
#include "tests/download/Lease.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/TestMain.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QList>

namespace fs = std::filesystem; // Qt cannot handle names that are not UTF-8

using Entries = QList<QByteArray>;

namespace {

fs::path inHome(const QByteArray& path)
{
    return fs::path(QDir::homePath().toStdString()) / path.toStdString();
}

QByteArray contentInHome(const QByteArray& path)
{
    std::ifstream file(inHome(path), std::ios::binary);
    return QByteArray::fromStdString(std::string(std::istreambuf_iterator<char>(file), {}));
}

void bindLocalSocket(const fs::path& path)
{
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    qstrncpy(place.sun_path, path.c_str(), sizeof place.sun_path);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QCOMPARE(::bind(descriptor, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    ::close(descriptor);
}

/// Creates an entry of the home folder: "folder/", "file: content", "link -> target", "pipe|" or
/// "socket=".
void create(const QByteArray& entry)
{
    const auto colon = entry.indexOf(": ");
    const auto arrow = entry.indexOf(" -> ");
    const fs::path chopped = inHome(entry.chopped(1));
    if (entry.endsWith('/')) {
        fs::create_directories(chopped);
    } else if (arrow > 0) {
        fs::create_symlink(entry.mid(arrow + 4).toStdString(), inHome(entry.left(arrow)));
    } else if (entry.endsWith('|')) {
        QCOMPARE(::mkfifo(chopped.c_str(), 0600), 0);
    } else if (entry.endsWith('=')) {
        bindLocalSocket(chopped);
    } else {
        const fs::path path = inHome(entry.left(colon));
        std::ofstream(path) << entry.constData() + colon + 2;
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    }
}

/// Returns every entry of the home folder and its subfolders as create() takes them, sorted.
Entries homeEntries()
{
    Entries entries;
    const fs::path home = inHome("");
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(home)) {
        const auto name = QByteArray::fromStdString(entry.path().lexically_relative(home));
        switch (entry.symlink_status().type()) {
        case fs::file_type::directory:
            entries.append(name + '/');
            break;
        case fs::file_type::symlink:
            entries.append(name + " -> " + fs::read_symlink(entry).c_str());
            break;
        case fs::file_type::regular:
            entries.append(name + ": " + contentInHome(name));
            break;
        default:
            entries.append(name + (entry.is_fifo() ? '|' : '='));
        }
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

/// Returns the entries that are gone with a minus sign, then the new ones with a plus sign.
Entries changes(const Entries& before, const Entries& after)
{
    Entries changed;
    for (const QByteArray& entry : before) {
        if (!after.contains(entry)) {
            changed.append('-' + entry);
        }
    }
    for (const QByteArray& entry : after) {
        if (!before.contains(entry)) {
            changed.append('+' + entry);
        }
    }
    return changed;
}

unsigned modeOf(const QByteArray& path)
{
    return static_cast<unsigned>(fs::status(inHome(path)).permissions());
}

/// A signal that is blocked, while this object exists, in the thread that created the object and in
/// the threads which that thread starts. Number 0 blocks no signal.
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

/// Creates a recording in the download folder and returns its path.
QByteArray oldRecording()
{
    create("Desktop/DCIM/");
    create("Desktop/DCIM/a.mp4: old");
    return inHome("Desktop/DCIM/a.mp4").c_str();
}

/// Downloads a recording and compares the changes in the home folder. An empty `expected` means
/// that the recording cannot be saved.
void downloadThatChanges(const QString& name, const Entries& expected)
{
    const Entries before = homeEntries();
    const Camera camera(answerOf("new content"));
    Download download(name);
    QVERIFY(download.run());
    QCOMPARE(changes(before, homeEntries()), expected);
    QCOMPARE(download.output.text(), QByteArray(expected.isEmpty() ? "Create file failed\n" : ""));
    QCOMPARE(download.recorder.received, QList<qint64>({11}));
}

/// A download to an existing file on which another process holds a lease.
struct LeasedDownload
{
    /// Starts the download and returns whether it waits for the end of the lease.
    bool startsToWait()
    {
        download.start();
        return lease.taken() && lease.waitUntilWanted() && watch.waitUntilAsleep();
    }

    support::Lease lease{oldRecording()};
    Camera camera{answerOf("new content")};
    Download download{"a.mp4"};
    support::SleepWatch watch{download.thread}; // created before the thread starts
};

} // namespace

class LocalFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void folderIsOnTheDesktopUnderItsLatin1OrNativeName_data();
    void folderIsOnTheDesktopUnderItsLatin1OrNativeName();
    void bareFileNamesAreRecognised_data();
    void bareFileNamesAreRecognised();
    void recordingIsSavedUnderABareNameOnly_data();
    void recordingIsSavedUnderABareNameOnly();
    void missingDesktopIsAFailureAndCreatesNothing();
    void modesAreOpenExceptForTheMask_data();
    void modesAreOpenExceptForTheMask();
    void existingFileKeepsItsMode();
    void failedDownloadLeavesAnExistingFileAlone();
    void openingAFileUnderALeaseWaits();
    void stopEndsTheWaitForALease_data();
    void stopEndsTheWaitForALease();
};

void LocalFileTest::init()
{
    for (const fs::directory_entry& entry : fs::directory_iterator(inHome(""))) {
        fs::remove_all(entry);
    }
    create("Desktop/");
}

void LocalFileTest::folderIsOnTheDesktopUnderItsLatin1OrNativeName_data()
{
    QTest::addColumn<Entries>("existing");
    QTest::addColumn<QByteArray>("desktop");
    QTest::addColumn<QByteArray>("folder");
    const auto row = [](const char* title, const Entries& existing, const char* desktop,
                        const char* folder) {
        QTest::newRow(title) << existing << QByteArray(desktop) << QByteArray(folder);
    };
    row("ASCII", {"Desktop/"}, "Desktop", "Desktop/DCIM/");
    row("native, with an accent", {"Área de Trabalho/"}, "Área de Trabalho",
        "Área de Trabalho/DCIM/");
    row("native, Chinese", {"桌面/"}, "桌面", "桌面/DCIM/");
    row("both names exist: Latin-1", {"Área/", "\xC1rea/"}, "Área", "\xC1rea/DCIM/");
    row("neither name exists: Latin-1", {}, "Área", "\xC1rea/DCIM/");
}

void LocalFileTest::folderIsOnTheDesktopUnderItsLatin1OrNativeName()
{
    QFETCH(Entries, existing);
    QFETCH(QByteArray, desktop);
    QFETCH(QByteArray, folder);
    std::for_each(existing.begin(), existing.end(), create);
    QCOMPARE(download::recordingsFolder(QDir::homePath() + '/' + QString::fromUtf8(desktop)),
             QDir::homePath().toLatin1() + '/' + folder);
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

void LocalFileTest::recordingIsSavedUnderABareNameOnly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Entries>("before");
    QTest::addColumn<Entries>("changed");
    const auto row = [](const char* title, const QString& name, const Entries& before,
                        const Entries& changed) {
        QTest::newRow(title) << name << before << changed;
    };
    const QByteArray saved = "+Desktop/DCIM/a.mp4: new content";
    row("new folder", "a.mp4", {}, {"+Desktop/DCIM/", saved});
    row("existing folder", "a.mp4", {"Desktop/DCIM/"}, {saved});
    row("folder is a link", "a.mp4", {"elsewhere/", "Desktop/DCIM -> ../elsewhere"},
        {"+elsewhere/a.mp4: new content"});
    row("longer file keeps its tail", "a.mp4",
        {"Desktop/DCIM/", "Desktop/DCIM/a.mp4: old content longer content"},
        {"-Desktop/DCIM/a.mp4: old content longer content",
         "+Desktop/DCIM/a.mp4: new content longer content"});
    row("shorter file is overwritten", "a.mp4", {"Desktop/DCIM/", "Desktop/DCIM/a.mp4: old"},
        {"-Desktop/DCIM/a.mp4: old", saved});

    // The user's settings state the name of the desktop folder.
    const auto desktop = [&row](const char* title, const QByteArray& folder) {
        row(title, "a.mp4",
            {".config/", ".config/user-dirs.dirs: XDG_DESKTOP_DIR=\"$HOME/" + folder + "\"\n",
             folder + '/'},
            {'+' + folder + "/DCIM/", '+' + folder + "/DCIM/a.mp4: new content"});
    };
    desktop("desktop with a plain name", "Schreibtisch");
    desktop("desktop with an accent", "Área de Trabalho");
    desktop("desktop in Chinese", "桌面");

    row("Latin-1 letter", QString::fromUtf8("é.mp4"), {"Desktop/DCIM/"},
        {"+Desktop/DCIM/\xE9.mp4: new content"});
    row("other letter", QString::fromUtf8("桌.mp4"), {"Desktop/DCIM/"},
        {"+Desktop/DCIM/?.mp4: new content"});
    const auto odd = [&row](const char* title, const QByteArray& name) {
        row(title, name, {"Desktop/DCIM/"}, {"+Desktop/DCIM/" + name + ": new content"});
    };
    odd("leading dash", "-rf");
    odd("leading dots", "..a");
    odd("backslash", "..\\a");
    odd("percent", "%s%n%2e%2e%2f");
    odd("line ending", "a\r\nb");
    odd("shell", "$(id);`id`|*?");

    row("folder is a dangling link", "a.mp4", {"Desktop/DCIM -> ../nowhere"}, {});
    row("folder is a file", "a.mp4", {"Desktop/DCIM: a file"}, {});
    row("recording is a folder", "a.mp4", {"Desktop/DCIM/", "Desktop/DCIM/a.mp4/"}, {});
    row("recording is a link", "a.mp4",
        {"outside: kept", "Desktop/DCIM/", "Desktop/DCIM/a.mp4 -> ../../outside"}, {});
    row("recording is a pipe", "a.mp4", {"Desktop/DCIM/", "Desktop/DCIM/a.mp4|"}, {});
    // In place of a device file, which only root can create.
    row("recording is a socket", "a.mp4", {"Desktop/DCIM/", "Desktop/DCIM/a.mp4="}, {});

    const Entries precious{"Desktop/DCIM/", "Desktop/DCIM/sub/", "Desktop/precious: kept"};
    row("empty", "", precious, {});
    row("the folder", ".", precious, {});
    row("the folder above", "..", precious, {});
    row("a file above", "../precious", precious, {});
    row("an absolute path", "/tmp/evil", precious, {});
    row("a file in a folder", "sub/evil", precious, {});
    row("trailing slash", "evil/", precious, {});
    row("zero byte", QString::fromLatin1("evil\0.mp4", 9), precious, {});
    row("zero byte after dots", QString::fromLatin1("../precious\0", 12), precious, {});
    row("longer than file names may be", QString(3000, 'n'), precious, {});
}

void LocalFileTest::recordingIsSavedUnderABareNameOnly()
{
    QFETCH(QString, name);
    QFETCH(Entries, before);
    QFETCH(Entries, changed);
    std::for_each(before.begin(), before.end(), create);
    downloadThatChanges(name, changed);
    QVERIFY(!QFile::exists("/tmp/evil"));
}

void LocalFileTest::missingDesktopIsAFailureAndCreatesNothing()
{
    fs::remove(inHome("Desktop"));
    downloadThatChanges("a.mp4", {});
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
    const Camera camera(answerOf("new content"));
    Download download("a.mp4");
    const mode_t before = ::umask(mask);
    const bool finished = download.run();
    ::umask(before);
    QVERIFY(finished);
    QCOMPARE(modeOf("Desktop/DCIM"), mode);
    QCOMPARE(modeOf("Desktop/DCIM/a.mp4"), mode);
}

void LocalFileTest::existingFileKeepsItsMode()
{
    oldRecording();
    const Camera camera(answerOf("new content"));
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(modeOf("Desktop/DCIM/a.mp4"), 0600U);
}

void LocalFileTest::failedDownloadLeavesAnExistingFileAlone()
{
    oldRecording();
    Download download("a.mp4");
    QVERIFY(download.run());
    QCOMPARE(download.output.text(), QByteArray("connect failed, return: -1\n"));
    QCOMPARE(contentInHome("Desktop/DCIM/a.mp4"), QByteArray("old"));
}

void LocalFileTest::openingAFileUnderALeaseWaits()
{
    LeasedDownload leased;
    QVERIFY(leased.startsToWait());
    QCOMPARE(leased.download.recorder.finished, 0);
    QCOMPARE(contentInHome("Desktop/DCIM/a.mp4"), QByteArray("old"));
    leased.lease.giveUp();
    QVERIFY(leased.download.waitUntilFinished());
    QCOMPARE(leased.download.output.text(), QByteArray());
    QCOMPARE(contentInHome("Desktop/DCIM/a.mp4"), QByteArray("new content"));
}

void LocalFileTest::stopEndsTheWaitForALease_data()
{
    QTest::addColumn<int>("blockedSignal");
    QTest::newRow("ordinary program") << 0;
    QTest::newRow("program that blocks SIGURG") << SIGURG;
}

void LocalFileTest::stopEndsTheWaitForALease()
{
    QFETCH(int, blockedSignal);
    const BlockedSignal block(blockedSignal);
    LeasedDownload leased;
    QVERIFY(leased.startsToWait());
    QCOMPARE(delayOf([&] { leased.download.thread.stopAndWait(); }), QString());
    QCOMPARE(leased.download.output.text(), QByteArray());
    QCOMPARE(contentInHome("Desktop/DCIM/a.mp4"), QByteArray("old"));
}

BELUN_NETWORK_TEST(LocalFileTest)
#include "LocalFileTest.moc"
