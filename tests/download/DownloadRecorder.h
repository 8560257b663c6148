// Records the signals of a download thread.
#pragma once

#include "download/DownloadFileThread.h"
#include "tests/kit/StdoutCapture.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QTest>
#include <QThread>

/// An object that receives the thread's signals through queued connections, as the window does.
class DownloadRecorder : public QObject
{
    Q_OBJECT

public:
    QList<qint64> received;  ///< The received bytes that each progress signal reports.
    QList<qint64> announced; ///< The announced length that each progress signal reports.
    int finished = 0;
    int progressAfterFinished = 0;

public slots:
    void updateDownloadFileProgress(qint64 first, qint64 second)
    {
        received.append(first);
        announced.append(second);
        progressAfterFinished += finished;
    }
    void downloadFileFinished() { ++finished; }
};

/// One download with its captured standard output and log.
struct Download
{
    explicit Download(const QString& name)
    {
        QObject::connect(&thread, SIGNAL(updateDownloadFileProgress(qint64, qint64)), &recorder,
                                         SLOT(updateDownloadFileProgress(qint64, qint64)));
        QObject::connect(&thread, SIGNAL(downloadFileFinished()), &recorder,
                                         SLOT(downloadFileFinished()));
        thread.fileName = name;
    }
    void start() { thread.start(QThread::InheritPriority); }

    /// Starts the download and waits until it has reported its end and its thread has finished.
    bool run()
    {
        start();
        return waitUntilFinished();
    }
    bool waitUntilFinished()
    {
        return QTest::qWaitFor([&] { return recorder.finished > 0; }) && thread.wait(5000);
    }

    support::StdoutCapture output;
    DownloadRecorder recorder;
    DownloadFileThread thread{nullptr};
};
