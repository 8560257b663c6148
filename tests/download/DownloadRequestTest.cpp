#include "download/DownloadRequest.h"

#include "tests/kit/TestMain.h"

class DownloadRequestTest : public QObject
{
    Q_OBJECT

private slots:
    void requestIsExact();
    void zeroByteEndsTheTarget();
    void longTargetIsNotCut();
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

BELUN_TEST(DownloadRequestTest)
#include "DownloadRequestTest.moc"
