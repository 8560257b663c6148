#include "download/RecordingDownload.h"

#include "download/DownloadRequest.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <new>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QThread>

namespace download {

namespace {

constexpr unsigned long wakeInterval = 5; // milliseconds
constexpr int errorLimit = 16;            // receive errors in a row

/// Shown at once, also when standard output is a pipe.
void tell(const char* line)
{
    std::fputs(line, stdout);
    std::fflush(stdout);
}

/// The count is a 32-bit number that wraps: recordings of 2 GiB and more are not supported.
qint32 wrappingSum(qint32 count, qint32 more)
{
    return static_cast<qint32>(static_cast<quint32>(count) + static_cast<quint32>(more));
}

} // namespace

RecordingDownload::~RecordingDownload()
{
    for (const int descriptor : m_opened) {
        ::close(descriptor);
    }
}

bool RecordingDownload::openSocket()
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    m_socket = descriptor;
    if (descriptor < 0) {
        std::printf("invalid socket descriptor: %d\n", descriptor);
        std::fflush(stdout);
        return false;
    }
    m_opened.push_back(descriptor);
    return true;
}

bool RecordingDownload::connectToCamera()
{
    sockaddr_in camera{};
    camera.sin_family = AF_INET;
    camera.sin_addr.s_addr = inet_addr(cameraHost);
    camera.sin_port = htons(cameraPort);
    if (::connect(m_socket, reinterpret_cast<const sockaddr*>(&camera), sizeof camera) == -1 &&
        !m_stopRequested) {
        tell("connect failed, return: -1\n");
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
        while (!complete && !m_stopRequested) {
            char byte = 0;
            const ssize_t count = ::read(m_socket, &byte, 1);
            if (count == 1) {
                complete = head.add(byte);
            } else if (count == 0 || errno != EINTR) {
                break;
            }
        }
    } catch (const std::bad_alloc&) {
        tell("realloc failed\n");
        return false;
    }
    return true;
}

bool RecordingDownload::openFile(const QByteArray& path)
{
    // A link would lead out of the folder, and a pipe would be waited for: neither is followed.
    m_file = ::open(path.constData(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0777);
    if (m_file < 0) {
        return refuseFile();
    }
    m_opened.push_back(m_file);
    struct stat properties
    {
    };
    if (::fstat(m_file, &properties) != 0 || !S_ISREG(properties.st_mode)) {
        return refuseFile();
    }
    return true;
}

bool RecordingDownload::refuseFile()
{
    m_file = -1;
    tell("Create file failed\n");
    return false;
}

void RecordingDownload::copyBody(qint64 announced, const ProgressHandler& progress)
{
    std::array<char, 4096> buffer;
    qint32 received = 0;
    int errorsInARow = 0;
    while (!m_stopRequested && errorsInARow < errorLimit) {
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

void RecordingDownload::stopAndWait(QThread& downloadThread)
{
    requestStop();
    while (!downloadThread.wait(wakeInterval)) {
        ::shutdown(m_socket, SHUT_RDWR);
    }
}

} // namespace download
