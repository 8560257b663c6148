// A download with what it reports, and a server in place of the camera.
#pragma once

#include "download/DownloadFileThread.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TimeFactor.h"

#include <utility>
#include <vector>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QString>
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

    /// Starts the download and waits until its thread has finished.
    bool run()
    {
        start();
        return waitUntilFinished();
    }
    /// Returns whether the thread has finished and has reported its end once, after all progress.
    bool waitUntilFinished()
    {
        const bool ended = thread.wait(5000UL * static_cast<unsigned long>(support::timeFactor()));
        QCoreApplication::processEvents(); // the signals are queued
        return ended && recorder.finished == 1 && recorder.progressAfterFinished == 0;
    }

    support::StdoutCapture output;
    DownloadRecorder recorder;
    DownloadFileThread thread{nullptr};
};

/// Returns an answer that announces the length of its body.
inline QByteArray answerOf(const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
           body;
}

/// A server at the camera's address.
class Camera : public support::ScriptedServer
{
public:
    static constexpr char address[] = "192.168.1.120";
    static constexpr quint16 port = 80;
    static constexpr char requestEnd[] = "Connection:close\r\n\r\n";

    explicit Camera(Script script) : ScriptedServer(std::move(script), address, port) {}
    explicit Camera(std::vector<Script> scripts) : ScriptedServer(std::move(scripts), address, port)
    {
    }
    /// Answers each request with these bytes and closes.
    explicit Camera(const QByteArray& answer) : Camera(sending(answer)) {}

    /// Returns a script that receives the request, sends these bytes and closes.
    static Script sending(const QByteArray& answer)
    {
        return [answer](support::Peer& peer) {
            peer.receiveUntil(requestEnd);
            peer.send(answer);
        };
    }
};

/// Returns an empty text if stopping something takes less than half a second, otherwise how long it
/// took.
template <class Stop>
QString delayOf(const Stop& stop)
{
    QElapsedTimer time;
    time.start();
    stop();
    const qint64 elapsed = time.elapsed();
    return elapsed < 2000 * support::timeFactor() ? QString()
                                                  : QString::number(elapsed) + " milliseconds";
}
