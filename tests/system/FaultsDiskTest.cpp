// Downloads to unusual local disks.
#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowTexts.h"
#include "tests/system/FaultRun.h"

#include <csignal>
#include <optional>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>

namespace {

constexpr uid_t nobody = 65534;
const QByteArray refused = "Create file failed\n";

QByteArray native(const QString& path)
{
    return QFile::encodeName(path);
}

QString recordingPath(int row)
{
    return FaultRun::downloadPath(FaultRun::recordings[row].name);
}

/// Returns how much of its content a recording contains (see seenFile()), or the text of any other
/// file.
QString seenContent(const QFileInfo& entry)
{
    for (const CardFile& recording : FaultRun::recordings) {
        if (recording.name == entry.fileName()) {
            return seenFile(entry.filePath(), recording.content());
        }
    }
    QFile file(entry.filePath());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : "cannot be read";
}

/// Returns what is below the home folder, except for the settings, whose paths begin with a dot:
/// files with their content, links with their target, empty folders, and whatever is none of these.
QString seenHome()
{
    const QDir home(QDir::homePath());
    const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QStringList seen;
    for (QDirIterator walk(home.path(), all, QDirIterator::Subdirectories); walk.hasNext();) {
        const QFileInfo entry(walk.next());
        const QString path = home.relativeFilePath(entry.filePath());
        if (entry.isSymLink()) {
            seen += path + " -> " + home.relativeFilePath(entry.symLinkTarget());
        } else if (entry.isDir()) {
            seen += QDir(entry.filePath()).isEmpty(all) ? path + '/' : QString();
        } else if (!entry.isFile()) {
            seen += path + " is no file";
        } else {
            seen += path + ": " + seenContent(entry);
        }
    }
    seen = seen.filter(QRegularExpression("^[^.]"));
    seen.sort();
    return seen.join(", ");
}

} // namespace

class FaultsDiskTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void recordingIsSavedWhereItIsSafe_data();
    void recordingIsSavedWhereItIsSafe();
    void permissionsAreObeyed_data();
    void permissionsAreObeyed();
    void fullDiskKeepsWhatFits();
    void fileOfTheGreatestSizeKeepsWhatFits();
    void longerFileKeepsItsEnd();
    void pipeWithAReaderGetsNothing();

private:
    /// Runs the shell script in the home folder.
    void prepare(const QString& script);
    /// Downloads the row. Checks the printed output, and that the window then still shows both rows
    /// and the link.
    void download(int row, const QByteArray& printed);

    std::optional<FaultRun> run;
};

void FaultsDiskTest::init()
{
    run.emplace();
    prepare("chmod 755 . Desktop");
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

void FaultsDiskTest::prepare(const QString& script)
{
    QCOMPARE(QProcess::execute("/bin/sh", {"-c", "cd \"$0\" && " + script, QDir::homePath()}), 0);
}

void FaultsDiskTest::download(int row, const QByteArray& printed)
{
    run->download(row);
    QCOMPARE(run->printed(), printed);
    QCOMPARE(run->user().table().rowCount(), 2);
    QCOMPARE(run->user().status(), support::windowText("linked").english);
}

void FaultsDiskTest::recordingIsSavedWhereItIsSafe_data()
{
    const support::Rows<QString, int, QByteArray, QString> row("script", "row", "printed", "home");
    const QString desktopIs =
        "mkdir -p .config '%1'; echo 'XDG_DESKTOP_DIR=\"$HOME/%1\"' >.config/user-dirs.dirs";

    row("missing folder", "true", 0, "", "Desktop/DCIM/REC00001.MP4: whole");
    row("missing desktop", "rmdir Desktop", 0, refused, "");
    row("Chinese desktop", desktopIs.arg("桌面"), 0, "", "Desktop/, 桌面/DCIM/REC00001.MP4: whole");
    row("Portuguese desktop", desktopIs.arg("Área de Trabalho"), 0, "",
        "Desktop/, Área de Trabalho/DCIM/REC00001.MP4: whole");
    row("file in place of the folder", "printf mine >Desktop/DCIM", 0, refused,
        "Desktop/DCIM: mine");
    row("link in place of the folder", "mkdir Videos; ln -s ../Videos Desktop/DCIM", 0, "",
        "Desktop/DCIM -> Videos, Videos/REC00001.MP4: whole");
    row("dangling link in place of the folder", "ln -s ../Gone Desktop/DCIM", 0, refused,
        "Desktop/DCIM -> Gone");
    row("folder in place of the recording", "mkdir -p Desktop/DCIM/REC00002.MP4", 1, refused,
        "Desktop/DCIM/REC00002.MP4/");
    row("link in place of the recording",
        "mkdir Desktop/DCIM; printf mine >letter; ln -s ../../letter Desktop/DCIM/REC00001.MP4", 0,
        refused, "Desktop/DCIM/REC00001.MP4 -> letter, letter: mine");
    row("dangling link in place of the recording",
        "mkdir Desktop/DCIM; ln -s ../../letter Desktop/DCIM/REC00001.MP4", 0, refused,
        "Desktop/DCIM/REC00001.MP4 -> letter");
    row("pipe in place of the recording", "mkdir Desktop/DCIM; mkfifo Desktop/DCIM/REC00001.MP4", 0,
        refused, "Desktop/DCIM/REC00001.MP4 is no file");
}

void FaultsDiskTest::recordingIsSavedWhereItIsSafe()
{
    QFETCH(QString, script);
    QFETCH(int, row);
    QFETCH(QByteArray, printed);
    prepare(script);
    download(row, printed);
    QTEST(seenHome(), "home");
}

void FaultsDiskTest::permissionsAreObeyed_data()
{
    const support::Rows<QString, QByteArray, QString> row("script", "printed", "home");
    row("unwritable folder", "mkdir -m 555 Desktop/DCIM", refused, "Desktop/DCIM/");
    row("folder that everybody may write", "mkdir -m 777 Desktop/DCIM", "",
        "Desktop/DCIM/REC00002.MP4: whole");
    row("read-only recording",
        "mkdir Desktop/DCIM; cd Desktop/DCIM; printf mine >REC00002.MP4; chmod 444 REC00002.MP4",
        refused, "Desktop/DCIM/REC00002.MP4: 4 other bytes");
}

void FaultsDiskTest::permissionsAreObeyed()
{
    QFETCH(QString, script);
    QFETCH(QByteArray, printed);
    prepare(script);
    // Permissions do not apply to root, which becomes another user until the end of this function.
    const uid_t user = ::geteuid();
    QVERIFY(user != 0 || ::seteuid(nobody) == 0);
    const auto back = qScopeGuard([user] {
        if (::seteuid(user) != 0) {
            qFatal("cannot be the former user again");
        }
    });
    download(1, printed);
    QTEST(seenHome(), "home");
}

void FaultsDiskTest::fullDiskKeepsWhatFits()
{
    prepare("mkdir Desktop/DCIM");
    // Mounted only for this thread and the threads that it starts.
    const QByteArray folder = native(FaultRun::downloadPath({}));
    if (::unshare(CLONE_NEWNS) != 0 ||
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", folder.constData(), "tmpfs", 0, "size=16k") != 0) {
        QTest::qSkip("this user may not mount a disk of 16 KiB; see the next test function",
                     __FILE__, __LINE__);
        return;
    }
    const auto unmount = qScopeGuard([&folder] { ::umount2(folder.constData(), MNT_DETACH); });
    download(0, "");
    download(1, ""); // there is no space left for it
    QCOMPARE(seenHome(), QString("Desktop/DCIM/REC00001.MP4: first 16384 bytes, "
                                 "Desktop/DCIM/REC00002.MP4: empty"));
}

void FaultsDiskTest::fileOfTheGreatestSizeKeepsWhatFits()
{
    std::signal(SIGXFSZ, SIG_IGN); // write() then fails beyond the limit
    rlimit former{};
    ::getrlimit(RLIMIT_FSIZE, &former);
    const rlimit limit{10'000, former.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const auto lift = qScopeGuard([&former] { ::setrlimit(RLIMIT_FSIZE, &former); });
    download(0, "");
    download(1, "");
    QCOMPARE(seenHome(), QString("Desktop/DCIM/REC00001.MP4: first 10000 bytes, "
                                 "Desktop/DCIM/REC00002.MP4: whole"));
}

void FaultsDiskTest::longerFileKeepsItsEnd()
{
    prepare("mkdir Desktop/DCIM; head -c 600 /dev/zero >Desktop/DCIM/REC00002.MP4");
    download(1, "");
    QFile file(recordingPath(1));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), FaultRun::recordings[1].content() + QByteArray(100, '\0'));
}

void FaultsDiskTest::pipeWithAReaderGetsNothing()
{
    prepare("mkdir Desktop/DCIM; mkfifo Desktop/DCIM/REC00001.MP4");
    const int reader =
        ::open(native(recordingPath(0)).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
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
