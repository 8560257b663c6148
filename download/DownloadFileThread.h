// The download of one recording from the camera's card.
#pragma once

#include "download/RecordingDownload.h"
#include "download/resp_header.h"

#include <QString>
#include <QThread>

/// Fetches the recording named in `fileName` into the folder "DCIM" on the user's desktop, over one
/// connection of its own. Whatever fails, run() ends with downloadFileFinished(). The object
/// belongs to the thread that made it; run() is the download thread, and the signals come from
/// there. The destructor stops the download and waits for it.
class DownloadFileThread : public QThread
{
    Q_OBJECT

public:
    explicit DownloadFileThread(QObject* parent);
    ~DownloadFileThread() override;

    /// Asks run() to end, without waiting. From any thread.
    void requestStop() noexcept { m_download.requestStop(); }
    /// Ends whatever run() waits for and returns when it has finished, within milliseconds.
    void stopAndWait();

    QString fileName;       ///< The recording's bare name; set before start().
    QString urlPrefix;      ///< What stands before the name in the request, scheme included.
    resp_header respHeader; ///< The head of the last answer; written by the download thread.

signals:
    void downloadFileFinished();
    /// Bytes received so far, bytes announced.
    void updateDownloadFileProgress(qint64, qint64);

public slots:
    /// The whole download, in the calling thread.
    void DownloadFile(QString fileName);
    /// Status, type and length of a head.
    resp_header get_resp_header(char* response);

protected:
    void run() override;

private:
    download::RecordingDownload m_download;
};
