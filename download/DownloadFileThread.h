// The download of one recording from the camera's card.
#pragma once

#include "download/resp_header.h"
#include "posix/StoppableCalls.h"
#include "posix/Worker.h"

#include <mutex>

#include <QString>
#include <QThread>

/// A thread that downloads the recording `fileName` into the folder "DCIM" on the user's desktop,
/// over a separate connection. Unless the thread is stopped before the file is opened, run() ends
/// by emitting downloadFileFinished(), even after a failure. The object belongs to the thread that
/// created it; run() executes in the download thread and emits the signals there. The destructor
/// stops the thread and waits for it.
class DownloadFileThread : public QThread, public sys::Worker
{
    Q_OBJECT

public:
    explicit DownloadFileThread(QObject* parent);
    ~DownloadFileThread() override;

    void requestStop() noexcept final { m_calls.requestStop(); }
    /// Ends every download, in run() and in DownloadFile() in any thread. Returns, within
    /// milliseconds, once run() has finished and the calls in other threads have returned. Called
    /// from a slot that a download calls directly, it does not wait for that download.
    void stopAndWait() final;

    QString fileName;       ///< The recording's bare name; set before start().
    QString urlPrefix;      ///< Start of the URL, with its scheme; the name follows.
    resp_header respHeader; ///< Fields of the last answer's head; set by DownloadFile().

signals:
    void downloadFileFinished();
    /// Reports the bytes received so far and the bytes announced.
    void updateDownloadFileProgress(qint64, qint64);

public slots:
    /// Downloads one recording in the calling thread. Calls may overlap: each opens its own
    /// connection and its own file descriptor.
    void DownloadFile(QString fileName);
    /// Returns the status, type and length in the head of an answer.
    resp_header get_resp_header(char* response);

protected:
    void run() override;

private:
    /// Downloads one recording. Returns false if the thread was stopped before the file was opened.
    bool fetch(const QString& name);

    std::mutex m_headerMutex; // guards respHeader while it is written
    sys::StoppableCalls m_calls;
};
