// Runs the built program in unusual environments: closed or full standard streams, a proxy, unusual
// folders, limits and locales. In each environment the program must work completely and write
// output only to its standard streams.
#include "tests/kit/DrivenProcess.h"
#include "tests/kit/FakeVehicle.h"
#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <array>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

namespace {

using Texts = QList<QByteArray>;

const Texts names{"a.mp4", "b.mp4", "c.mp4"};

QByteArray recording(char letter)
{
    return QByteArray(9000, letter);
}

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

/// Returns the target of a process's descriptor, or "closed".
QByteArray openOn(qint64 process, int descriptor)
{
    std::array<char, 256> target{};
    const QByteArray link = QString("/proc/%1/fd/%2").arg(process).arg(descriptor).toUtf8();
    const ssize_t size = ::readlink(link.constData(), target.data(), target.size());
    return size < 0 ? QByteArray("closed") : QByteArray(target.data(), static_cast<int>(size));
}

} // namespace

/// The devices, a proxy that must not be used, and the program.
struct Scene
{
    QTemporaryDir folder;
    fake::Module ground{fake::groundAddress};
    fake::Module control{fake::controlAddress};
    fake::Camera camera;
    support::ScriptedServer proxy{support::ScriptedServer::Script([](support::Peer& peer) {
                                      peer.receiveUntil("\r\n\r\n");
                                      peer.send("HTTP/1.1 200 Connection established\r\n\r\n");
                                      peer.serve();
                                  }),
                                  "127.0.0.1", 3128};
    DrivenProcess program;

    QString path(const QString& name) const { return folder.filePath(name); }
};

class SurroundingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { scene.reset(); }

    void everythingWorks_data();
    void everythingWorks();
    void closedStreamsAreOnTheNullDevice();
    void commaInTheLocaleIsInNoText();
    void maskDecidesAboutTheModeOfARecording_data();
    void maskDecidesAboutTheModeOfARecording();

private:
    void compileCommaLocale();
    /// Links, browses, downloads everything and closes the program. b.mp4 cannot be saved, because
    /// a folder has this name.
    void useProgram();
    void start(const QString& preparation, const QString& redirections = QString());

    std::optional<Scene> scene;
    QString desktop;
};

void SurroundingsTest::init()
{
    scene.emplace();
    QVERIFY(QDir(scene->folder.path()).mkpath("home"));
    QVERIFY(QDir(scene->folder.path()).mkpath("config"));
    desktop = "Desktop";
    scene->camera.holdFiles(names);
    for (const QByteArray& name : names) {
        scene->camera.answer(fake::downloadTarget + name, recording(name[0]));
    }
}

void SurroundingsTest::everythingWorks_data()
{
    const support::Rows<QString, QString, QString> rows("preparation", "redirections",
                                                        "desktopName");
    const auto row = [&rows](const char* name, const char* preparation,
                             const char* redirections = "", const char* desktopName = "Desktop") {
        rows(name, preparation, redirections, desktopName);
    };
    const char closedReader[] = "mkfifo reader; exec 3<>reader 4>reader 3<&-";

    row("as usual", "");
    row("standard input closed", "", "<&-");
    row("standard output closed", "", ">&-");
    row("standard error closed", "", "2>&-");
    row("both outputs closed", "", ">&- 2>&-");
    row("all three closed", "", "<&- >&- 2>&-");
    row("full device as standard output", "", ">/dev/full");
    row("full device as standard error", "", "2>/dev/full");
    row("closed reader as standard output", closedReader, ">&4 4>&-");
    row("closed reader as both outputs", closedReader, ">&4 2>&4 4>&-");
    row("http_proxy that is dead", "export http_proxy=http://127.0.0.1:9");
    row("all_proxy that is dead", "export all_proxy=socks5://127.0.0.1:9");
    row("http_proxy that answers", "export http_proxy=http://127.0.0.1:3128");
    row("all_proxy that answers", "export all_proxy=http://127.0.0.1:3128");
    row("Chinese desktop folder", "", "", "桌面");
    row("Chinese desktop folder, LANG=C", "unset LC_ALL; export LANG=C", "", "桌面");
    row("LC_ALL=C", "export LC_ALL=C");
    row("few descriptors", "ulimit -n 32");
    row("no home", "unset HOME");
    row("no runtime folder", "unset XDG_RUNTIME_DIR");
    row("runtime folder that does not exist", "export XDG_RUNTIME_DIR=\"$PWD/none\"");
}

void SurroundingsTest::everythingWorks()
{
    QFETCH(QString, preparation);
    QFETCH(QString, redirections);
    QFETCH(QString, desktopName);
    desktop = desktopName;
    start(preparation, redirections);
    useProgram();
}

void SurroundingsTest::closedStreamsAreOnTheNullDevice()
{
    start(QString(), "<&- >&- 2>&-");
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        QCOMPARE(openOn(scene->program.id(), descriptor), QByteArray("/dev/null"));
        const QByteArray info =
            read(QString("/proc/%1/fdinfo/%2").arg(scene->program.id()).arg(descriptor));
        const int mode = info.mid(info.indexOf("flags:") + 6, 9).trimmed().toInt(nullptr, 8);
        QCOMPARE(mode & O_ACCMODE, descriptor == STDIN_FILENO ? O_RDONLY : O_WRONLY);
    }
    scene->program.close();
}

/// Compiles a locale with a decimal comma, so that none needs to be installed.
void SurroundingsTest::compileCommaLocale()
{
    QFile source(scene->path("source"));
    QVERIFY(source.open(QIODevice::WriteOnly));
    source.write("comment_char %\nescape_char /\nLC_NUMERIC\ndecimal_point \",\"\n"
                 "thousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    source.close();
    // The locale is incomplete on purpose; localedef warns about that.
    QProcess::execute("/bin/sh", {"-c",
                                  "cd \"$0\" && exec localedef -c -i source "
                                  "-f ANSI_X3.4-1968 ./de_DE >localedef.log 2>&1",
                                  scene->folder.path()});
    QVERIFY2(QFile::exists(scene->path("de_DE/LC_NUMERIC")), read(scene->path("localedef.log")));
}

void SurroundingsTest::commaInTheLocaleIsInNoText()
{
    compileCommaLocale();
    start("export LOCPATH=\"$PWD\"; unset LC_ALL; export LC_NUMERIC=de_DE");
    QCOMPARE(scene->program.tell("point"), QByteArray(",\ndone\n"));
    useProgram();
}

void SurroundingsTest::maskDecidesAboutTheModeOfARecording_data()
{
    const support::Rows<QString, int> row("mask", "mode");
    row("umask 077", "077", 0700);
    row("umask 0", "0", 0777);
}

void SurroundingsTest::maskDecidesAboutTheModeOfARecording()
{
    QFETCH(QString, mask);
    QFETCH(int, mode);
    start("umask " + mask);
    useProgram();
    const QString path = scene->path("home/Desktop/DCIM/a.mp4");
    struct stat status
    {
    };
    QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777U), mode);
}

void SurroundingsTest::start(const QString& preparation, const QString& redirections)
{
    const QString home = scene->path("home");
    QVERIFY(QDir(home).mkpath(desktop + "/DCIM/b.mp4"));
    QFile folders(scene->path("config/user-dirs.dirs"));
    QVERIFY(folders.open(QIODevice::WriteOnly));
    folders.write("XDG_DESKTOP_DIR=\"" + home.toUtf8() + '/' + desktop.toUtf8() + "\"\n");
    folders.close();

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", home);
    environment.insert("XDG_CONFIG_HOME", scene->path("config"));
    environment.insert("XDG_RUNTIME_DIR", scene->folder.path());
    scene->program.start(scene->folder.path(), environment,
                         preparation + "\nexec \"$0\" " + redirections);
}

void SurroundingsTest::useProgram()
{
    if (QTest::currentTestFailed()) {
        return; // not started
    }
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const QByteArray target = openOn(scene->program.id(), descriptor);
        QVERIFY2(target.startsWith("pipe:") || target.startsWith('/'), target);
    }
    const QByteArray done("done\n");
    QCOMPARE(scene->program.tell("click pushButtonLinkBELUN"), done);
    QCOMPARE(scene->program.tell("text lineEditLinkBELUN"), "Link Success!\n" + done);
    QTRY_COMPARE(scene->control.links(), QList<int>{1});
    QTRY_COMPARE(scene->ground.links(), QList<int>{1});
    scene->control.link().send(QByteArray::fromHex("aaaf000909000100020003000400"));
    QTRY_COMPARE(scene->program.tell("text lineEditBootVer"), "v0.04\n" + done);
    scene->control.link().send(QByteArray::fromHex("aaaf04010000"));
    QTRY_COMPARE(scene->control.link().received(), QByteArray::fromHex("aaaf0401015f"));

    QCOMPARE(scene->program.tell("click pushButtonEnterTFcard"), done);
    QCOMPARE(scene->program.tell("click checkBoxSelectAllFiles"), done);
    QCOMPARE(scene->program.tell("click pushButtonDownloadFile"), done);
    const QString folderOfRecordings = scene->path("home/") + desktop + "/DCIM/";
    QTRY_COMPARE_WITH_TIMEOUT(read(folderOfRecordings + "a.mp4"), recording('a'),
                              DrivenProcess::limit());
    QCOMPARE(read(folderOfRecordings + "c.mp4"), recording('c'));
    QTRY_COMPARE(scene->program.tell("text lineEditDownloadProgress"), '\n' + done);

    // None of the program's output was sent to a module.
    QCOMPARE(scene->control.link().received(), QByteArray::fromHex("aaaf0401015f"));
    QCOMPARE(scene->ground.link().received(), QByteArray());
    scene->program.close();
    QCOMPARE(read(folderOfRecordings + "a.mp4"), recording('a'));
    QCOMPARE(read(folderOfRecordings + "c.mp4"), recording('c'));
    const QByteArray info = fake::infoTarget;
    const QByteArray download = fake::downloadTarget;
    QCOMPARE(scene->camera.targets(),
             (Texts{fake::countTarget, fake::listTarget + QByteArray("3"), info + "a.mp4",
                    info + "b.mp4", info + "c.mp4", download + "c.mp4", download + "b.mp4",
                    download + "a.mp4"}));
    QCOMPARE(scene->camera.errors(), Texts());
    QCOMPARE(scene->proxy.connectionCount(), 0);
}

BELUN_NETWORK_TEST(SurroundingsTest)

#include "SurroundingsTest.moc"
