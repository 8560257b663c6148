// The steps of downloading one recording: connection, head, local file, body.
#pragma once

#include "download/ResponseHead.h"
#include "posix/StoppableCalls.h"

#include <functional>

#include <QByteArray>

namespace download {

/// Handler of the progress, called after each piece of the body and each receive error with the
/// bytes counted so far and the bytes announced.
using ProgressHandler = std::function<void(qint64, qint64)>;

/// One recording being downloaded to a local file. By design the socket and the file stay open
/// after the download; the destructor of `calls` closes them. After a stop of `calls` every step
/// ends, and connectToCamera() and openFile() return true without a message. A failure does not end
/// the download: each step may follow a failed one. Messages go to standard output. Use from one
/// thread only.
class RecordingDownload
{
public:
    explicit RecordingDownload(sys::StoppableCalls& calls) : m_calls(calls), m_call(calls) {}

    /// Creates the socket. Returns false after printing a message if that fails.
    bool openSocket();

    /// Connects to the camera, without a time limit of its own. Returns false after printing a
    /// message if that fails.
    bool connectToCamera();

    /// Passes the request to a single write() and ignores the result.
    void sendRequest(const QByteArray& request);

    /// Reads the head, byte by byte so that no byte of the body is consumed, until the head is
    /// complete, a receive fails or the connection ends. Returns false after printing a message if
    /// memory runs out.
    bool readHead(ResponseHead& head);

    /// Opens the local file; see openLocalFile(). If an existing file is longer than the recording,
    /// its end is kept. Returns false after printing a message if opening fails; the body is then
    /// read and discarded.
    bool openFile(const QByteArray& folder, const QByteArray& name);

    /// Copies the body to the file in pieces of at most 4,096 bytes until the announced length is
    /// reached or the connection ends. The length is checked after a receive but before the
    /// received bytes are written, so one more receive is made than needed, and its bytes are
    /// discarded. A receive error counts as -1 byte. Sixteen errors in a row, not counting
    /// interruptions by signals, end the copying.
    void copyBody(qint64 announced, const ProgressHandler& progress);

private:
    sys::StoppableCalls& m_calls;
    sys::StoppableCalls::Call m_call;
    int m_socket = -1;
    int m_file = -1;
};

} // namespace download
