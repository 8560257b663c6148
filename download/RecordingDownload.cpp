#include "download/RecordingDownload.h"

#include "download/DownloadRequest.h"
#include "download/LocalFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <new>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace download {

namespace {

constexpr int errorLimit = 16; // receive errors in a row

/// Prints a line and flushes it, so that it also appears immediately when standard output is a
/// pipe.
void print(const char* line)
{
    std::fputs(line, stdout);
    std::fflush(stdout);
}

/// Returns the sum as a 32-bit number that wraps: recordings of 2 GiB and more are not supported.
qint32 wrappingSum(qint32 count, qint32 more)
{
    return static_cast<qint32>(static_cast<quint32>(count) + static_cast<quint32>(more));
}

} // namespace

bool RecordingDownload::openSocket()
{
    m_socket = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (m_socket < 0) {
        print("invalid socket descriptor: -1\n");
        return false;
    }
    m_calls.keep(m_socket);
    m_call.waitOn(m_socket);
    return true;
}

bool RecordingDownload::connectToCamera()
{
    sockaddr_in camera{};
    camera.sin_family = AF_INET;
    camera.sin_addr.s_addr = inet_addr(cameraHost);
    camera.sin_port = htons(cameraPort);
    if (::connect(m_socket, reinterpret_cast<const sockaddr*>(&camera), sizeof camera) == -1 &&
        !m_calls.stopRequested()) {
        print("connect failed, return: -1\n");
        return false;
    }
    return true;
}

void RecordingDownload::sendRequest(const QByteArray& request)
{
    [[maybe_unused]] const ssize_t written =
        ::write(m_socket, request.constData(), static_cast<std::size_t>(request.size()));
}

bool RecordingDownload::readHead(ResponseHead& head)
{
    try {
        bool complete = false;
        while (!complete && !m_calls.stopRequested()) {
            char byte = 0;
            const ssize_t count = ::read(m_socket, &byte, 1);
            if (count == 1) {
                complete = head.add(byte);
            } else if (count == 0 || errno != EINTR) {
                break;
            }
        }
    } catch (const std::bad_alloc&) {
        print("realloc failed\n");
        return false;
    }
    return true;
}

bool RecordingDownload::openFile(const QByteArray& folder, const QByteArray& name)
{
    m_file = openLocalFile(m_call, folder, name);
    if (m_file < 0 && !m_calls.stopRequested()) {
        print("Create file failed\n");
        return false;
    }
    m_calls.keep(m_file);
    return true;
}

void RecordingDownload::copyBody(qint64 announced, const ProgressHandler& progress)
{
    std::array<char, 4096> buffer;
    qint32 received = 0;
    int errorsInARow = 0;
    while (!m_calls.stopRequested() && errorsInARow < errorLimit) {
        const ssize_t count = ::read(m_socket, buffer.data(), buffer.size());
        if (count == 0 || received >= announced) {
            break;
        }
        if (count > 0) {
            [[maybe_unused]] const ssize_t written =
                ::write(m_file, buffer.data(), static_cast<std::size_t>(count));
            errorsInARow = 0;
        } else if (errno != EINTR) {
            ++errorsInARow;
        }
        received = wrappingSum(received, static_cast<qint32>(count));
        progress(received, announced);
    }
}

} // namespace download
