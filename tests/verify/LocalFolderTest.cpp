// Reading the folder for recordings: its files, and entries that are never opened.
#include "verify/LocalFolder.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>

using verify::LocalFile;
using verify::LocalFolder;

Q_DECLARE_METATYPE(LocalFile::State)

class LocalFolderTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void fileIsOpenedWithItsSize();
    void fileIsReadToItsEnd();
    void readErrorIsKept();
    void bytesFromTheDiskAreTheSame();
    void nothingButAFileIsOpened_data();
    void nothingButAFileIsOpened();
    void changesAreSeen();
    void folderThatDoesNotExistIsEmpty();
    void whatIsNoFolderIsAnError();
    void namesAreTheFilesThatAreNotHidden();
    void freeBytesAreThoseOfTheDisk();

private:
    void write(const QString& name, const QByteArray& bytes)
    {
        QFile file(m_folder->filePath(name));
        QVERIFY(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
    }
    std::string path(const char* name = "") const
    {
        return m_folder->filePath(QString::fromLatin1(name)).toStdString();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void LocalFolderTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    write("A.MP4", "hello");
}

void LocalFolderTest::fileIsOpenedWithItsSize()
{
    const LocalFolder folder(path());
    const LocalFile file = folder.open("A.MP4");
    QCOMPARE(file.state(), LocalFile::State::Open);
    QCOMPARE(quint64(file.size()), quint64(5));
    QCOMPARE(folder.open("B.MP4").state(), LocalFile::State::Missing);
    QVERIFY(QFile::resize(m_folder->filePath("A.MP4"), qint64(5) << 30));
    QCOMPARE(quint64(folder.open("A.MP4").size()), quint64(5) << 30);
}

void LocalFolderTest::fileIsReadToItsEnd()
{
    LocalFile file = LocalFolder(path()).open("A.MP4");
    char bytes[8] = {};
    QCOMPARE(int(file.read(bytes, 2)), 2);
    QCOMPARE(int(file.read(bytes + 2, 6)), 3);
    QCOMPARE(QByteArray(bytes), QByteArray("hello"));
    QCOMPARE(int(file.read(bytes, 1)), 0);
    QCOMPARE(file.error(), 0);
}

void LocalFolderTest::readErrorIsKept()
{
    // Nothing is mapped at address 0, so reading the first byte of the memory fails.
    LocalFile file = LocalFolder("/proc/self").open("mem");
    QCOMPARE(file.state(), LocalFile::State::Open);
    char byte = 0;
    QCOMPARE(int(file.read(&byte, 1)), 0);
    QCOMPARE(file.error(), EIO);
}

void LocalFolderTest::bytesFromTheDiskAreTheSame()
{
    QByteArray bytes;
    for (int i = 0; i < 5 << 20; ++i) {
        bytes.append(reinterpret_cast<const char*>(&i), sizeof i);
    }
    write("large", bytes);
    LocalFile file = LocalFolder(path()).open("large");
    file.readFromDisk();
    QByteArray found(bytes.size(), '\0');
    for (int i = 0; i < bytes.size(); i += 100000) {
        const int count = qMin(100000, int(bytes.size()) - i);
        QCOMPARE(int(file.read(found.data() + i, std::size_t(count))), count);
    }
    QVERIFY(found == bytes);
    QVERIFY(file.isUnchanged());
}

void LocalFolderTest::nothingButAFileIsOpened_data()
{
    const support::Rows<QString, LocalFile::State> row("name", "state");
    row("link to a file", "link", LocalFile::State::Link);
    row("link to nothing", "dead", LocalFile::State::Link);
    row("folder", "folder", LocalFile::State::Folder);
    row("pipe without a writer", "pipe", LocalFile::State::NoFile);
    row("socket", "socket", LocalFile::State::NoFile);
    row("name of 256 letters", QString(256, 'x'), LocalFile::State::NotThere);
}

void LocalFolderTest::nothingButAFileIsOpened()
{
    QCOMPARE(::symlink("A.MP4", path("link").c_str()), 0);
    QCOMPARE(::symlink("nothing", path("dead").c_str()), 0);
    QCOMPARE(::mkdir(path("folder").c_str(), 0700), 0);
    QCOMPARE(::mkfifo(path("pipe").c_str(), 0600), 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QCOMPARE(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::close(socket);

    QFETCH(QString, name);
    QTEST(LocalFolder(path()).open(name.toStdString()).state(), "state");
}

void LocalFolderTest::changesAreSeen()
{
    const LocalFile file = LocalFolder(path()).open("A.MP4");
    QVERIFY(file.isUnchanged());
    const timespec times[2] = {{1, 0}, {1, 1}};
    QCOMPARE(::utimensat(AT_FDCWD, path("A.MP4").c_str(), times, 0), 0);
    QVERIFY(!file.isUnchanged());

    const LocalFile again = LocalFolder(path()).open("A.MP4");
    QVERIFY(again.isUnchanged());
    QVERIFY(QFile::resize(m_folder->filePath("A.MP4"), 4));
    QCOMPARE(::utimensat(AT_FDCWD, path("A.MP4").c_str(), times, 0), 0);
    QVERIFY(!again.isUnchanged());
}

void LocalFolderTest::folderThatDoesNotExistIsEmpty()
{
    LocalFolder folder(path("none/"));
    QCOMPARE(folder.error(), 0);
    QVERIFY(folder.names().empty());
    QCOMPARE(folder.error(), 0);
    QCOMPARE(folder.open("A.MP4").state(), LocalFile::State::Missing);
    QVERIFY(folder.freeBytes());
}

void LocalFolderTest::whatIsNoFolderIsAnError()
{
    QCOMPARE(LocalFolder(path("A.MP4")).error(), ENOTDIR);
}

void LocalFolderTest::namesAreTheFilesThatAreNotHidden()
{
    write("b", "");
    write(".hidden", "");
    QCOMPARE(::symlink("A.MP4", path("link").c_str()), 0);
    QCOMPARE(::mkdir(path("folder").c_str(), 0700), 0);
    LocalFolder folder(path());
    QCOMPARE(folder.names(), (std::vector<std::string>{"A.MP4", "b"}));
    QCOMPARE(folder.names(), (std::vector<std::string>{"A.MP4", "b"}));
    QCOMPARE(folder.error(), 0);
}

void LocalFolderTest::freeBytesAreThoseOfTheDisk()
{
    const auto here = LocalFolder(path()).freeBytes();
    QVERIFY(here && *here > 0);
    QVERIFY(!LocalFolder("/nowhere/at/all/").freeBytes());
}

BELUN_TEST(LocalFolderTest)

#include "LocalFolderTest.moc"
