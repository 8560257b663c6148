#include "download/DownloadFileThread.h"

#include "download/DownloadRequest.h"
#include "download/LocalFile.h"
#include "download/RecordingDownload.h"
#include "posix/PipeSignalBlock.h"

#include <QStandardPaths>

DownloadFileThread::DownloadFileThread(QObject* parent)
    : QThread(parent), urlPrefix(QString::fromLatin1(download::recordingUrlPrefix))
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
    m_calls.stopAndWait([this](unsigned long milliseconds) {
        return currentThread() == this || wait(milliseconds); // run() cannot wait for itself
    });
}

void DownloadFileThread::run()
{
    const QString name = fileName;
    DownloadFile(name);
}

void DownloadFileThread::DownloadFile(QString name)
{
    const sys::PipeSignalBlock block;
    const sys::StoppableCalls::Call call(m_calls); // exists until directly connected slots return
    if (fetch(name)) {
        emit downloadFileFinished(); // a slot may delete this object
    }
}

// QThread::exit() only marks a failure here, because run() has no event loop to end. fetch() goes
// on after a failure, so that downloadFileFinished() is emitted and the window starts the next
// download.
bool DownloadFileThread::fetch(const QString& name)
{
    download::RecordingDownload recording(m_calls);
    const QByteArray url = (urlPrefix + name).toLatin1();
    const QByteArray localName = name.toLatin1();
    const QByteArray folder = download::recordingsFolder(
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation));
    download::makeFolder(folder);

    if (!recording.openSocket()) {
        QThread::exit(-1);
    }
    if (!recording.connectToCamera()) {
        QThread::exit(-1);
    }
    recording.sendRequest(download::requestText(url, download::cameraHost));
    download::ResponseHead head;
    if (!recording.readHead(head)) {
        QThread::exit(-1);
    }
    if (m_calls.stopRequested()) {
        return false; // stopped: do not open a file
    }
    const resp_header header = get_resp_header(head.text());
    {
        const std::lock_guard<std::mutex> lock(m_headerMutex);
        respHeader = header;
    }

    if (!recording.openFile(folder, localName)) {
        QThread::exit(0);
    }
    recording.copyBody(header.content_length, [this](qint64 received, qint64 announced) {
        emit updateDownloadFileProgress(received, announced);
    });
    return true;
}

resp_header DownloadFileThread::get_resp_header(char* response)
{
    return download::parseHead(response);
}
