// Downloads from third-party web servers at the camera's address.
#include "RealServers.h"
#include "download/DownloadFileThread.h"
#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <memory>

#include <QDir>
#include <QFile>
#include <QSignalSpy>

class RealServersDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void aRecordingArrivesWhole_data();
    void aRecordingArrivesWhole();
    void aRefusedRequestLeavesAnEmptyRecording();
    void errorPageOfAMissingRecordingIsSavedAsItsContent_data();
    void errorPageOfAMissingRecordingIsSavedAsItsContent();
    void aRecordingWithoutALengthStaysEmpty_data();
    void aRecordingWithoutALengthStaysEmpty();
    void aShorterRecordingLeavesTheOldTailInPlace_data();
    void aShorterRecordingLeavesTheOldTailInPlace();

private:
    bool startCamera(RealServer::Kind kind);
    void download(const QString& name, const std::string& urlPrefix = {});
    static QByteArray recording(const QString& name);

    std::unique_ptr<RealServer> m_camera;
    resp_header m_head;          // of the last download
    QVariantList m_lastProgress; // of the last download; empty if it reported no progress
};

void RealServersDownloadTest::cleanup()
{
    m_camera.reset();
    QDir(QDir::homePath() + "/Desktop/DCIM").removeRecursively();
}

bool RealServersDownloadTest::startCamera(RealServer::Kind kind)
{
    m_camera = std::make_unique<RealServer>(kind, "192.168.1.120", 80);
    if (!m_camera->start()) {
        QTest::qFail(qPrintable(m_camera->error()), __FILE__, __LINE__);
        return false;
    }
    return true;
}

/// Downloads a recording as the window does, within the limit.
void RealServersDownloadTest::download(const QString& name, const std::string& urlPrefix)
{
    DownloadFileThread thread(nullptr);
    thread.fileName = name;
    if (!urlPrefix.empty()) {
        thread.urlPrefix = QString::fromStdString(urlPrefix);
    }
    QSignalSpy finished(&thread, &DownloadFileThread::downloadFileFinished);
    QSignalSpy progress(&thread, &DownloadFileThread::updateDownloadFileProgress);
    thread.start();
    QVERIFY2(thread.wait(waitLimit), "the download did not end");
    QTRY_COMPARE(finished.count(), 1);
    m_lastProgress = progress.isEmpty() ? QVariantList() : progress.last();
    m_head = thread.respHeader;
}

QByteArray RealServersDownloadTest::recording(const QString& name)
{
    QFile file(QDir::homePath() + "/Desktop/DCIM/" + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "no such file";
}

void RealServersDownloadTest::aRecordingArrivesWhole_data()
{
    const support::Rows<RealServer::Kind, int> row("kind", "size");
    for (const auto kind : {RealServer::Nginx, RealServer::Lighttpd}) {
        for (const int size : sizes) {
            row(qPrintable(QString("%1, %2 B").arg(serverName(kind)).arg(size)), kind, size);
        }
    }
}

void RealServersDownloadTest::aRecordingArrivesWhole()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(int, size);
    QVERIFY(startCamera(kind));
    QVERIFY(m_camera->publish("sd/DCIM/100ZEPNA/BELUN_0001.bin", body(size)));
    download("BELUN_0001.bin");
    QCOMPARE(m_head.status_code, 200);
    QCOMPARE(QByteArray(m_head.content_type), QByteArray("application/octet-stream"));
    QCOMPARE(m_head.content_length, static_cast<qint64>(size));
    QCOMPARE(m_lastProgress, (QVariantList{qint64(size), qint64(size)}));
    COMPARE_BODIES(recording("BELUN_0001.bin"), body(size));
}

// busybox rejects a request with scheme and host in its target, and its error pages have no length.
void RealServersDownloadTest::aRefusedRequestLeavesAnEmptyRecording()
{
    QVERIFY(startCamera(RealServer::Busybox));
    QVERIFY(m_camera->publish("sd/DCIM/100ZEPNA/BELUN_0001.bin", body(5)));
    download("BELUN_0001.bin");
    QCOMPARE(m_head.status_code, 400);
    QCOMPARE(m_head.content_length, qint64(0));
    QVERIFY(m_lastProgress.isEmpty());
    QCOMPARE(recording("BELUN_0001.bin"), QByteArray());
}

void RealServersDownloadTest::errorPageOfAMissingRecordingIsSavedAsItsContent_data()
{
    addServers({RealServer::Nginx, RealServer::Lighttpd});
}

void RealServersDownloadTest::errorPageOfAMissingRecordingIsSavedAsItsContent()
{
    QFETCH(RealServer::Kind, kind);
    QVERIFY(startCamera(kind));
    download("BELUN_0002.bin");
    QCOMPARE(m_head.status_code, 404);
    const QByteArray page = recording("BELUN_0002.bin");
    QCOMPARE(static_cast<qint64>(page.size()), m_head.content_length);
    QVERIFY2(page.contains("<title>404 Not Found</title>"), page.constData());
}

void RealServersDownloadTest::aRecordingWithoutALengthStaysEmpty_data()
{
    const support::Rows<QString> row("prefix");
    row("chunked", RealServer::chunkedPath({}));
    row("ended by closing", RealServer::closingPath({}));
}

void RealServersDownloadTest::aRecordingWithoutALengthStaysEmpty()
{
    QFETCH(QString, prefix);
    QVERIFY(startCamera(RealServer::Nginx));
    QVERIFY(m_camera->publish("BELUN_0001.bin", body(25000)));
    download("BELUN_0001.bin", m_camera->url(prefix));
    QCOMPARE(m_head.status_code, 200);
    QVERIFY(m_lastProgress.isEmpty());
    QCOMPARE(recording("BELUN_0001.bin"), QByteArray());
}

void RealServersDownloadTest::aShorterRecordingLeavesTheOldTailInPlace_data()
{
    addServers({RealServer::Nginx, RealServer::Lighttpd});
}

void RealServersDownloadTest::aShorterRecordingLeavesTheOldTailInPlace()
{
    QFETCH(RealServer::Kind, kind);
    QVERIFY(startCamera(kind));
    QVERIFY(m_camera->publish("sd/DCIM/100ZEPNA/BELUN_0001.bin", body(25000)));
    download("BELUN_0001.bin");
    QVERIFY(m_camera->publish("sd/DCIM/100ZEPNA/BELUN_0001.bin", body(10240)));
    download("BELUN_0001.bin");
    COMPARE_BODIES(recording("BELUN_0001.bin"), body(10240) + body(25000).mid(10240));
}

BELUN_NETWORK_TEST(RealServersDownloadTest)
#include "RealServersDownloadTest.moc"
