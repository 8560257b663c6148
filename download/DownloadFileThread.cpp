#include "download/DownloadFileThread.h"

#include "download/DownloadRequest.h"

#include <csignal>

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QStandardPaths>

namespace {

/// Writing to a connection that the camera has refused or closed fails from now on without a
/// signal, which would end a program that does not ignore it.
void blockPipeSignal()
{
    sigset_t pipeSignal;
    ::sigemptyset(&pipeSignal);
    ::sigaddset(&pipeSignal, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
}

} // namespace

DownloadFileThread::DownloadFileThread(QObject* parent)
    : QThread(parent), urlPrefix(QStringLiteral("http://192.168.1.120/sd/DCIM/100ZEPNA/"))
{
    qDebug("DownloadFileThread build");
}

DownloadFileThread::~DownloadFileThread()
{
    stopAndWait();
    qDebug("DownloadFileThread ~");
}

void DownloadFileThread::stopAndWait()
{
    m_download.stopAndWait(*this);
}

void DownloadFileThread::run()
{
    blockPipeSignal();
    const QString name = fileName;
    DownloadFile(name);
}

// QThread::exit() marks where the download has failed. There is no event loop that it would end:
// the download always goes on to its end, so that the next one is started.
void DownloadFileThread::DownloadFile(QString name)
{
    const QByteArray url = (urlPrefix + name).toLatin1();
    const QByteArray localName = name.toLatin1();
    const QByteArray folder = download::recordingsFolder(
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation));
    if (::access(folder.constData(), F_OK) != 0) {
        ::mkdir(folder.constData(), 0777);
    }

    if (!m_download.openSocket()) {
        QThread::exit(-1);
    }
    if (!m_download.connectToCamera()) {
        QThread::exit(-1);
    }
    m_download.sendRequest(download::requestText(url, download::cameraHost));
    download::ResponseHead head;
    if (!m_download.readHead(head)) {
        QThread::exit(-1);
    }
    if (m_download.stopRequested()) {
        return; // the program is closing: no file is begun
    }
    respHeader = get_resp_header(head.text());

    const bool opened = download::isBareFileName(localName)
                            ? m_download.openFile(folder + localName)
                            : m_download.refuseFile();
    if (!opened) {
        QThread::exit(0);
    }
    m_download.copyBody(respHeader.content_length, [this](qint64 received, qint64 announced) {
        emit updateDownloadFileProgress(received, announced);
    });
    emit downloadFileFinished();
}

resp_header DownloadFileThread::get_resp_header(char* response)
{
    return download::parseHead(response);
}
