// The steps of fetching one recording: connection, head, local file, body.
#pragma once

#include "download/ResponseHead.h"

#include <atomic>
#include <functional>
#include <vector>

#include <QByteArray>

class QThread;

namespace download {

/// Bytes received so far and bytes announced, after each receive.
using ProgressHandler = std::function<void(qint64, qint64)>;

/// One recording on its way from the camera to a local file. By design the socket and the file stay
/// open when the download is over; they are closed with this object. Failures are told on standard
/// output only and stop nothing: every step may follow a failed one. The steps belong to one
/// thread, the stopping calls may come from any.
class RecordingDownload
{
public:
    RecordingDownload() = default;
    ~RecordingDownload();
    RecordingDownload(const RecordingDownload&) = delete;
    RecordingDownload& operator=(const RecordingDownload&) = delete;

    /// Makes the socket. False, and told, when there is none to be had.
    bool openSocket();

    /// Connects to the camera, waiting as long as the system does. False, and told, on failure.
    bool connectToCamera();

    /// Writes the whole request in one call.
    void sendRequest(const QByteArray& request);

    /// Reads the head, byte by byte so that no byte of the body goes with it, up to its end or the
    /// connection's. False, and told, when it has outgrown the memory.
    bool readHead(ResponseHead& head);

    /// Opens the local file for writing and keeps what an existing one holds: a longer one keeps
    /// its old tail. False, and told, when it cannot be opened or is no regular file (a link is
    /// none); the body is then read and dropped.
    bool openFile(const QByteArray& path);

    /// Refuses the local file, as if it could not be opened.
    bool refuseFile();

    /// Copies the body to the file in pieces of at most 4,096 bytes until the announced length is
    /// reached or the connection ends. The length is compared behind each receive, so one more is
    /// always made. A receive error counts as -1 byte; sixteen in a row end the body.
    void copyBody(qint64 announced, const ProgressHandler& progress);

    /// Asks the download to end, without waiting.
    void requestStop() noexcept { m_stopRequested = true; }
    bool stopRequested() const noexcept { return m_stopRequested; }

    /// Asks the download to end and shuts its socket down every few milliseconds until the thread
    /// it runs in has finished.
    void stopAndWait(QThread& downloadThread);

private:
    std::atomic<bool> m_stopRequested{false};
    std::atomic<int> m_socket{-1}; // written by the download, read by whoever stops it
    int m_file = -1;
    std::vector<int> m_opened;
};

} // namespace download
