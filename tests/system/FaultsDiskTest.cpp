// Downloads to unusual local disks.
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowTexts.h"
#include "tests/system/FaultRun.h"

#include <csignal>
#include <optional>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>

namespace {

constexpr uid_t nobody = 65534;
constexpr int largeSize = 40'000;
constexpr int smallSize = 500;
const QByteArray refused = "Create file failed\n";

QString homePath(const QString& path)
{
    return QDir::homePath() + '/' + path;
}

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

int entryCount(const QString& folder)
{
    return static_cast<int>(
        QDir(folder)
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)
            .size());
}

QByteArray native(const QString& path)
{
    return QFile::encodeName(path);
}

/// An ordinary user as which root runs while this object exists, so that file permissions apply.
/// Any other user stays the same.
class OrdinaryUser
{
public:
    OrdinaryUser() : m_id(::geteuid()) { m_changed = m_id != 0 || ::seteuid(nobody) == 0; }
    ~OrdinaryUser()
    {
        if (::seteuid(m_id) != 0) {
            qFatal("cannot be the former user again");
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    bool isOrdinary() const { return m_changed; }

private:
    uid_t m_id;
    bool m_changed;
};

/// A limit on the size of the files that this process writes, while this object exists. Writing
/// beyond it is an error, not a signal.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t size)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_former);
        rlimit limit = m_former;
        limit.rlim_cur = size;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_former); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_former{};
};

/// A disk of that size mounted over the folder, for this thread and the threads that it starts.
class SmallDisk
{
public:
    SmallDisk(const QString& folder, const QByteArray& size) : m_folder(native(folder))
    {
        m_mounted = ::unshare(CLONE_NEWNS) == 0 &&
                    ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                    ::mount("tmpfs", m_folder.constData(), "tmpfs", 0,
                            QByteArray("size=" + size).constData()) == 0;
    }
    ~SmallDisk()
    {
        if (m_mounted) {
            ::umount2(m_folder.constData(), MNT_DETACH);
        }
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return m_mounted; }

private:
    QByteArray m_folder;
    bool m_mounted;
};

} // namespace

class FaultsDiskTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void missingFolderIsCreated();
    void unwritableFolderStaysEmpty();
    void worldWritableFolderReceivesTheRecording();
    void fileInPlaceOfTheFolderStaysAsItIs();
    void linkInPlaceOfTheFolderIsFollowed();
    void danglingLinkInPlaceOfTheFolderIsNotFollowed();
    void fullDiskKeepsWhatFits();
    void fileOfTheGreatestSizeKeepsWhatFits();
    void missingDesktopIsNotCreated();
    void customDesktopFolderReceivesTheRecording_data();
    void customDesktopFolderReceivesTheRecording();
    void longerFileKeepsItsEnd();
    void readOnlyRecordingStaysAsItIs();
    void folderInPlaceOfTheRecordingStays();
    void linkInPlaceOfTheRecordingIsNotFollowed();
    void danglingLinkInPlaceOfTheRecordingCreatesNothing();
    void pipeInPlaceOfTheRecordingIsNotWaitedFor();
    void pipeWithAReaderGetsNothing();

private:
    QString dcim(const QString& name = {}) const { return FaultRun::downloadPath(name); }
    /// Downloads the row, expects that output, and checks that the window is idle and responsive.
    void download(int row, const QByteArray& printed);

    std::optional<FaultRun> run;
};

void FaultsDiskTest::init()
{
    run.emplace();
    QVERIFY(::chmod(native(QDir::homePath()).constData(), 0755) == 0);
    QVERIFY(::chmod(native(homePath("Desktop")).constData(), 0755) == 0);
    run->startSimulator();
    run->link();
    run->browse();
}

void FaultsDiskTest::cleanup()
{
    if (!QTest::currentTestFailed()) {
        run->close();
    }
    run.reset();
}

void FaultsDiskTest::download(int row, const QByteArray& printed)
{
    run->download(row);
    QCOMPARE(run->printed(), printed);
    QCOMPARE(run->user().table().rowCount(), 2);
    QCOMPARE(run->user().status(), support::windowText("linked").english);
}

void FaultsDiskTest::missingFolderIsCreated()
{
    QVERIFY(!QFile::exists(dcim()));
    download(0, "");
    QCOMPARE(FaultRun::seenFile(dcim("REC00001.MP4"), largeSize), QStringLiteral("whole"));
    QCOMPARE(entryCount(dcim()), 1);
}

void FaultsDiskTest::unwritableFolderStaysEmpty()
{
    QVERIFY(::mkdir(native(dcim()).constData(), 0755) == 0);
    QVERIFY(::chmod(native(dcim()).constData(), 0555) == 0);
    {
        const OrdinaryUser user;
        QVERIFY(user.isOrdinary());
        download(0, refused);
    }
    QCOMPARE(entryCount(dcim()), 0);
    QVERIFY(::chmod(native(dcim()).constData(), 0755) == 0);
}

void FaultsDiskTest::worldWritableFolderReceivesTheRecording()
{
    QVERIFY(::mkdir(native(dcim()).constData(), 0755) == 0);
    QVERIFY(::chmod(native(dcim()).constData(), 0777) == 0);
    {
        const OrdinaryUser user;
        QVERIFY(user.isOrdinary());
        download(0, "");
    }
    QCOMPARE(FaultRun::seenFile(dcim("REC00001.MP4"), largeSize), QStringLiteral("whole"));
}

void FaultsDiskTest::fileInPlaceOfTheFolderStaysAsItIs()
{
    const QString path = homePath("Desktop/DCIM");
    QVERIFY(write(path, "mine"));
    download(0, refused);
    QCOMPARE(read(path), QByteArray("mine"));
    QCOMPARE(entryCount(homePath("Desktop")), 1);
}

void FaultsDiskTest::linkInPlaceOfTheFolderIsFollowed()
{
    QVERIFY(QDir().mkpath(homePath("Videos")));
    QVERIFY(QFile::link(homePath("Videos"), homePath("Desktop/DCIM")));
    download(0, "");
    QCOMPARE(FaultRun::seenFile(homePath("Videos/REC00001.MP4"), largeSize),
             QStringLiteral("whole"));
}

void FaultsDiskTest::danglingLinkInPlaceOfTheFolderIsNotFollowed()
{
    QVERIFY(QFile::link(homePath("Gone"), homePath("Desktop/DCIM")));
    download(0, refused);
    QVERIFY(!QFile::exists(homePath("Gone")));
}

void FaultsDiskTest::fullDiskKeepsWhatFits()
{
    QVERIFY(QDir().mkpath(dcim()));
    const SmallDisk disk(dcim(), "16k");
    if (!disk.isMounted()) {
        QTest::qSkip("a disk of 16 KiB needs rights that this user has not; see the next function",
                     __FILE__, __LINE__);
        return;
    }
    download(0, "");
    QCOMPARE(FaultRun::seenFile(dcim("REC00001.MP4"), largeSize),
             QStringLiteral("first 16384 bytes"));
    // There is no space left for the second recording.
    download(1, "");
    QCOMPARE(FaultRun::seenFile(dcim("REC00002.MP4"), smallSize), QStringLiteral("empty"));
}

void FaultsDiskTest::fileOfTheGreatestSizeKeepsWhatFits()
{
    {
        const FileSizeLimit limit(10'000);
        download(0, "");
    }
    QCOMPARE(FaultRun::seenFile(dcim("REC00001.MP4"), largeSize),
             QStringLiteral("first 10000 bytes"));
    download(1, "");
    QCOMPARE(FaultRun::seenFile(dcim("REC00002.MP4"), smallSize), QStringLiteral("whole"));
}

void FaultsDiskTest::missingDesktopIsNotCreated()
{
    QVERIFY(QDir(homePath("Desktop")).removeRecursively());
    download(0, refused);
    QCOMPARE(entryCount(QDir::homePath()), 0);
}

void FaultsDiskTest::customDesktopFolderReceivesTheRecording_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Chinese") << QStringLiteral("桌面");
    QTest::newRow("Portuguese") << QStringLiteral("Área de Trabalho");
}

void FaultsDiskTest::customDesktopFolderReceivesTheRecording()
{
    QFETCH(QString, name);
    QVERIFY(QDir().mkpath(homePath(name)));
    QVERIFY(QDir().mkpath(homePath(".config")));
    QVERIFY(write(homePath(".config/user-dirs.dirs"),
                  "XDG_DESKTOP_DIR=\"$HOME/" + name.toUtf8() + "\"\n"));
    download(0, "");
    QCOMPARE(FaultRun::seenFile(homePath(name + "/DCIM/REC00001.MP4"), largeSize),
             QStringLiteral("whole"));
    QCOMPARE(entryCount(homePath("Desktop")), 0);
}

void FaultsDiskTest::longerFileKeepsItsEnd()
{
    QVERIFY(QDir().mkpath(dcim()));
    QVERIFY(write(dcim("REC00002.MP4"), QByteArray(600, 'x')));
    download(1, "");
    QCOMPARE(read(dcim("REC00002.MP4")), FaultRun::content(smallSize) + QByteArray(100, 'x'));
}

void FaultsDiskTest::readOnlyRecordingStaysAsItIs()
{
    QVERIFY(QDir().mkpath(dcim()));
    QVERIFY(write(dcim("REC00002.MP4"), "mine"));
    QVERIFY(::chmod(native(dcim("REC00002.MP4")).constData(), 0444) == 0);
    {
        const OrdinaryUser user;
        QVERIFY(user.isOrdinary());
        download(1, refused);
    }
    QCOMPARE(read(dcim("REC00002.MP4")), QByteArray("mine"));
}

void FaultsDiskTest::folderInPlaceOfTheRecordingStays()
{
    QVERIFY(QDir().mkpath(dcim("REC00002.MP4")));
    download(1, refused);
    QCOMPARE(entryCount(dcim("REC00002.MP4")), 0);
}

void FaultsDiskTest::linkInPlaceOfTheRecordingIsNotFollowed()
{
    QVERIFY(QDir().mkpath(dcim()));
    QVERIFY(write(homePath("letter.txt"), "mine"));
    QVERIFY(QFile::link(homePath("letter.txt"), dcim("REC00001.MP4")));
    download(0, refused);
    QCOMPARE(read(homePath("letter.txt")), QByteArray("mine"));
    QCOMPARE(QFile::symLinkTarget(dcim("REC00001.MP4")), homePath("letter.txt"));
}

void FaultsDiskTest::danglingLinkInPlaceOfTheRecordingCreatesNothing()
{
    QVERIFY(QDir().mkpath(dcim()));
    QVERIFY(QFile::link(homePath("letter.txt"), dcim("REC00001.MP4")));
    download(0, refused);
    QVERIFY(!QFile::exists(homePath("letter.txt")));
}

void FaultsDiskTest::pipeInPlaceOfTheRecordingIsNotWaitedFor()
{
    QVERIFY(QDir().mkpath(dcim()));
    QVERIFY(::mkfifo(native(dcim("REC00001.MP4")).constData(), 0666) == 0);
    download(0, refused);
}

void FaultsDiskTest::pipeWithAReaderGetsNothing()
{
    QVERIFY(QDir().mkpath(dcim()));
    const QByteArray path = native(dcim("REC00001.MP4"));
    QVERIFY(::mkfifo(path.constData(), 0666) == 0);
    const int reader = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(reader >= 0);
    run->download(0);
    char byte = 0;
    const ssize_t count = ::read(reader, &byte, 1);
    ::close(reader);
    QCOMPARE(run->printed(), refused);
    QVERIFY(count < 1);
}

BELUN_NETWORK_TEST(FaultsDiskTest)
#include "FaultsDiskTest.moc"
