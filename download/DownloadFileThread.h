// The download of one recording from the camera's card.
#pragma once

#include "download/resp_header.h"
#include "posix/StoppableCalls.h"
#include "posix/Worker.h"

#include <mutex>

#include <QString>
#include <QThread>

/// A thread that downloads the recording `fileName` into the folder "DCIM" on the user's desktop,
/// over a separate connection. Unless it is stopped before the file is opened, run() ends with
/// downloadFileFinished(), whatever fails. The object belongs to the thread that created it; run()
/// is the download thread and emits the signals. The destructor stops the download and waits for
/// it.
class DownloadFileThread : public QThread, public sys::Worker
{
    Q_OBJECT

public:
    explicit DownloadFileThread(QObject* parent);
    ~DownloadFileThread() override;

    void requestStop() noexcept final { m_calls.requestStop(); }
    /// Ends every download, in run() and in DownloadFile() in any thread. Returns, within
    /// milliseconds, once run() has finished and the calls in other threads have returned. In a
    /// slot that a download calls directly, it does not wait for that download.
    void stopAndWait() final;

    QString fileName;       ///< The recording's bare name; set before start().
    QString urlPrefix;      ///< Precedes the name in the request, scheme included.
    resp_header respHeader; ///< The head of the last answer, written by DownloadFile().

signals:
    void downloadFileFinished();
    /// Reports the bytes received so far and the bytes announced.
    void updateDownloadFileProgress(qint64, qint64);

public slots:
    /// Downloads one recording in the calling thread. Calls may overlap: each has its own
    /// connection and its own file.
    void DownloadFile(QString fileName);
    /// Returns status, type and length of a head.
    resp_header get_resp_header(char* response);

protected:
    void run() override;

private:
    /// Downloads one recording. Returns false if it was stopped before its file was opened.
    bool fetch(const QString& name);

    std::mutex m_headerMutex; // guards respHeader while it is written
    sys::StoppableCalls m_calls;
};
