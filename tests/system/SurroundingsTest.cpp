// Runs the built program in unusual environments: closed or full standard streams, a proxy, odd
// folders, limits and locales. In each it works completely, and its output goes only to its
// standard streams.
#include "tests/kit/DrivenProcess.h"
#include "tests/kit/FakeVehicle.h"
#include "tests/kit/TestMain.h"

#include <array>
#include <memory>

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
    const QByteArray link = QStringLiteral("/proc/%1/fd/%2").arg(process).arg(descriptor).toUtf8();
    const ssize_t size = ::readlink(link.constData(), target.data(), target.size());
    return size < 0 ? QByteArray("closed") : QByteArray(target.data(), static_cast<int>(size));
}

} // namespace

class SurroundingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everythingWorks_data();
    void everythingWorks();
    void closedStreamsAreOnTheNullDevice();
    void commaInTheLocaleIsInNoText();
    void maskDecidesAboutTheModeOfARecording_data();
    void maskDecidesAboutTheModeOfARecording();

private:
    void compileCommaLocale();
    /// Links, browses and downloads everything. b.mp4 cannot be saved, because a folder has this
    /// name.
    void useProgram();
    void start(const QString& preparation, const QString& redirections = QString());

    std::unique_ptr<QTemporaryDir> folder;
    QString desktop;
    std::unique_ptr<fake::Module> ground;
    std::unique_ptr<fake::Module> control;
    std::unique_ptr<fake::Camera> camera;
    std::unique_ptr<support::ScriptedServer> proxy;
    std::unique_ptr<DrivenProcess> program;
};

void SurroundingsTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    QVERIFY(QDir(folder->path()).mkpath(QStringLiteral("home")));
    QVERIFY(QDir(folder->path()).mkpath(QStringLiteral("config")));
    desktop = QStringLiteral("Desktop");
    ground = std::make_unique<fake::Module>(fake::groundAddress);
    control = std::make_unique<fake::Module>(fake::controlAddress);
    camera = std::make_unique<fake::Camera>();
    camera->holdFiles(names);
    for (const QByteArray& name : names) {
        camera->answer(fake::downloadTarget + name, recording(name[0]));
    }
    proxy = std::make_unique<support::ScriptedServer>(
        support::ScriptedServer::Script([](support::Peer& peer) {
            peer.receiveUntil("\r\n\r\n");
            peer.send("HTTP/1.1 200 Connection established\r\n\r\n");
            peer.serve();
        }),
        "127.0.0.1", 3128);
    program = std::make_unique<DrivenProcess>();
}

void SurroundingsTest::cleanup()
{
    program.reset();
    proxy.reset();
    camera.reset();
    control.reset();
    ground.reset();
    folder.reset();
}

void SurroundingsTest::everythingWorks_data()
{
    QTest::addColumn<QString>("preparation");
    QTest::addColumn<QString>("redirections");
    QTest::addColumn<QString>("desktopName");
    const auto row = [](const char* name, const char* preparation, const char* redirections = "",
                        const char* desktopName = "Desktop") {
        QTest::newRow(name) << preparation << redirections << QString::fromUtf8(desktopName);
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
    row("umask 077", "umask 077");
    row("umask 0", "umask 0");
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
    start(QString(), QStringLiteral("<&- >&- 2>&-"));
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        QCOMPARE(openOn(program->id(), descriptor), QByteArray("/dev/null"));
        const QByteArray info =
            read(QStringLiteral("/proc/%1/fdinfo/%2").arg(program->id()).arg(descriptor));
        const int mode = info.mid(info.indexOf("flags:") + 6, 9).trimmed().toInt(nullptr, 8);
        QCOMPARE(mode & O_ACCMODE, descriptor == STDIN_FILENO ? O_RDONLY : O_WRONLY);
    }
    program->close();
}

/// Compiles the locale for the test, so that it need not be installed on the system.
void SurroundingsTest::compileCommaLocale()
{
    QFile source(folder->filePath(QStringLiteral("source")));
    QVERIFY(source.open(QIODevice::WriteOnly));
    source.write("comment_char %\nescape_char /\nLC_NUMERIC\ndecimal_point \",\"\n"
                 "thousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    source.close();
    // The locale is incomplete on purpose; localedef warns about that.
    QProcess::execute(QStringLiteral("/bin/sh"),
                      {QStringLiteral("-c"),
                       QStringLiteral("cd \"$0\" && exec localedef -c -i source "
                                      "-f ANSI_X3.4-1968 ./de_DE >localedef.log 2>&1"),
                       folder->path()});
    QVERIFY2(QFile::exists(folder->filePath(QStringLiteral("de_DE/LC_NUMERIC"))),
             read(folder->filePath(QStringLiteral("localedef.log"))));
}

void SurroundingsTest::commaInTheLocaleIsInNoText()
{
    compileCommaLocale();
    start(QStringLiteral("export LOCPATH=\"$PWD\"; unset LC_ALL; export LC_NUMERIC=de_DE"));
    QCOMPARE(program->tell("point"), QByteArray(",\ndone\n"));
    useProgram();
}

void SurroundingsTest::maskDecidesAboutTheModeOfARecording_data()
{
    QTest::addColumn<QString>("mask");
    QTest::addColumn<int>("mode");
    QTest::newRow("umask 077") << "077" << 0700;
    QTest::newRow("umask 0") << "0" << 0777;
}

void SurroundingsTest::maskDecidesAboutTheModeOfARecording()
{
    QFETCH(QString, mask);
    QFETCH(int, mode);
    start(QStringLiteral("umask ") + mask);
    useProgram();
    const QString path = folder->filePath(QStringLiteral("home/Desktop/DCIM/a.mp4"));
    struct stat status
    {
    };
    QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777U), mode);
}

void SurroundingsTest::start(const QString& preparation, const QString& redirections)
{
    const QString home = folder->filePath(QStringLiteral("home"));
    QVERIFY(QDir(home).mkpath(desktop + QStringLiteral("/DCIM/b.mp4")));
    QFile folders(folder->filePath(QStringLiteral("config/user-dirs.dirs")));
    QVERIFY(folders.open(QIODevice::WriteOnly));
    folders.write("XDG_DESKTOP_DIR=\"" + home.toUtf8() + '/' + desktop.toUtf8() + "\"\n");
    folders.close();

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"),
                       folder->filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder->path());
    program->start(folder->path(), environment,
                   preparation + QStringLiteral("\nexec \"$0\" ") + redirections);
}

void SurroundingsTest::useProgram()
{
    if (QTest::currentTestFailed()) {
        return; // not started
    }
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const QByteArray target = openOn(program->id(), descriptor);
        QVERIFY2(target.startsWith("pipe:") || target.startsWith('/'), target);
    }
    const QByteArray done("done\n");
    QCOMPARE(program->tell("click pushButtonLinkBELUN"), done);
    QCOMPARE(program->tell("text lineEditLinkBELUN"), "Link Success!\n" + done);
    QTRY_COMPARE(control->links(), QList<int>{1});
    QTRY_COMPARE(ground->links(), QList<int>{1});
    control->link().send(QByteArray::fromHex("aaaf000909000100020003000400"));
    QTRY_COMPARE(program->tell("text lineEditBootVer"), "v0.04\n" + done);
    control->link().send(QByteArray::fromHex("aaaf04010000"));
    QTRY_COMPARE(control->link().received(), QByteArray::fromHex("aaaf0401015f"));

    QCOMPARE(program->tell("click pushButtonEnterTFcard"), done);
    QCOMPARE(program->tell("click checkBoxSelectAllFiles"), done);
    QCOMPARE(program->tell("click pushButtonDownloadFile"), done);
    const QString folderOfRecordings =
        folder->filePath(QStringLiteral("home/")) + desktop + QStringLiteral("/DCIM/");
    QTRY_COMPARE_WITH_TIMEOUT(read(folderOfRecordings + QStringLiteral("a.mp4")), recording('a'),
                              DrivenProcess::limit());
    QCOMPARE(read(folderOfRecordings + QStringLiteral("c.mp4")), recording('c'));
    QTRY_COMPARE(program->tell("text lineEditDownloadProgress"), '\n' + done);

    // None of the program's output was sent to a module.
    QCOMPARE(control->link().received(), QByteArray::fromHex("aaaf0401015f"));
    QCOMPARE(ground->link().received(), QByteArray());
    program->close();
    QCOMPARE(read(folderOfRecordings + QStringLiteral("a.mp4")), recording('a'));
    QCOMPARE(read(folderOfRecordings + QStringLiteral("c.mp4")), recording('c'));
    const QByteArray info = fake::infoTarget;
    const QByteArray download = fake::downloadTarget;
    QCOMPARE(camera->targets(),
             (Texts{fake::countTarget, fake::listTarget + QByteArray("3"), info + "a.mp4",
                    info + "b.mp4", info + "c.mp4", download + "c.mp4", download + "b.mp4",
                    download + "a.mp4"}));
    QCOMPARE(camera->errors(), Texts());
    QCOMPARE(proxy->connectionCount(), 0);
}

BELUN_NETWORK_TEST(SurroundingsTest)

#include "SurroundingsTest.moc"
