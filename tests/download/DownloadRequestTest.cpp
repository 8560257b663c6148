#include "download/DownloadRequest.h"

#include "tests/support/TestMain.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QTemporaryDir>

namespace {

/// A folder that is made and removed by its bytes, whatever their encoding.
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

} // namespace

class DownloadRequestTest : public QObject
{
    Q_OBJECT

private slots:
    void requestIsExact();
    void zeroByteEndsTheTarget();
    void longTargetIsNotCut();
    void existingLatin1DesktopIsTaken();
    void desktopUnderItsNativeNameOnlyIsTaken_data();
    void desktopUnderItsNativeNameOnlyIsTaken();
    void latin1DesktopGoesBeforeTheNativeOne();
    void desktopThatIsNowhereIsNamedInLatin1();
    void bareFileNamesAreTold_data();
    void bareFileNamesAreTold();
};

void DownloadRequestTest::requestIsExact()
{
    QCOMPARE(
        download::requestText("http://192.168.1.120/sd/DCIM/100ZEPNA/a b.mp4", "192.168.1.120"),
        QByteArray("GET http://192.168.1.120/sd/DCIM/100ZEPNA/a b.mp4 HTTP/1.1\r\n"
                   "Accept:text/html,application/xhtml+xml,application/xml;q=0.9,image/webp,"
                   "*/*;q=0.8\r\n"
                   "User-Agent:Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/537(KHTML, like "
                   "Gecko) Chrome/47.0.2526Safari/537.36\r\n"
                   "Host:192.168.1.120\r\n"
                   "Connection:close\r\n"
                   "\r\n"));
}

void DownloadRequestTest::zeroByteEndsTheTarget()
{
    const QByteArray request =
        download::requestText(QByteArray("http://h/a\0b.mp4", 16), "192.168.1.120");
    QVERIFY2(request.startsWith("GET http://h/a HTTP/1.1\r\n"), request.constData());
    QVERIFY(request.endsWith("Connection:close\r\n\r\n"));
}

void DownloadRequestTest::longTargetIsNotCut()
{
    const QByteArray url = "http://h/" + QByteArray(100000, 'a');
    const QByteArray request = download::requestText(url, "192.168.1.120");
    QVERIFY(request.startsWith("GET " + url + " HTTP/1.1\r\nAccept:"));
    QVERIFY(request.endsWith("\r\nHost:192.168.1.120\r\nConnection:close\r\n\r\n"));
}

void DownloadRequestTest::existingLatin1DesktopIsTaken()
{
    const QTemporaryDir base;
    QCOMPARE(download::recordingsFolder(base.path()), base.path().toLatin1() + "/DCIM/");
}

void DownloadRequestTest::desktopUnderItsNativeNameOnlyIsTaken_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Latin letters with an accent") << QString::fromUtf8("Área de Trabalho");
    QTest::newRow("Chinese") << QString::fromUtf8("桌面");
}

void DownloadRequestTest::desktopUnderItsNativeNameOnlyIsTaken()
{
    QFETCH(QString, name);
    const QTemporaryDir base;
    const QString desktop = base.path() + "/" + name;
    const Folder native(desktop.toUtf8());
    QVERIFY(native.made);
    QCOMPARE(download::recordingsFolder(desktop), desktop.toUtf8() + "/DCIM/");
}

void DownloadRequestTest::latin1DesktopGoesBeforeTheNativeOne()
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

void DownloadRequestTest::desktopThatIsNowhereIsNamedInLatin1()
{
    const QTemporaryDir base;
    QCOMPARE(download::recordingsFolder(base.path() + QString::fromUtf8("/Área")),
             base.path().toLatin1() + "/\xC1rea/DCIM/");
}

void DownloadRequestTest::bareFileNamesAreTold_data()
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
    QTest::newRow("slash behind") << QByteArray("a/") << false;
    QTest::newRow("zero byte inside") << QByteArray("a\0b", 3) << false;
    QTest::newRow("zero byte behind") << QByteArray("..\0", 3) << false;
}

void DownloadRequestTest::bareFileNamesAreTold()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, bare);
    QCOMPARE(download::isBareFileName(name), bare);
}

BELUN_TEST(DownloadRequestTest)
#include "DownloadRequestTest.moc"
