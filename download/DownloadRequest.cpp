#include "download/DownloadRequest.h"

#include <unistd.h>

#include <QFile>

namespace download {

namespace {

// Everything behind the target, up to the host's name and behind it.
constexpr char headBeforeHost[] =
    " HTTP/1.1\r\n"
    "Accept:text/html,application/xhtml+xml,application/xml;q=0.9,image/webp,*/*;q=0.8\r\n"
    "User-Agent:Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/537(KHTML, like Gecko) "
    "Chrome/47.0.2526Safari/537.36\r\n"
    "Host:";
constexpr char headAfterHost[] = "\r\nConnection:close\r\n\r\n";

bool exists(const QByteArray& path)
{
    return ::access(path.constData(), F_OK) == 0;
}

} // namespace

QByteArray requestText(const QByteArray& url, const char* host)
{
    // The URL is a C string to the camera: a zero byte ends it.
    return QByteArray("GET ") + url.constData() + headBeforeHost + host + headAfterHost;
}

QByteArray recordingsFolder(const QString& desktop)
{
    const QByteArray latin1 = desktop.toLatin1();
    const QByteArray native = QFile::encodeName(desktop);
    return (!exists(latin1) && exists(native) ? native : latin1) + "/DCIM/";
}

bool isBareFileName(const QByteArray& name)
{
    return !name.isEmpty() && name != "." && name != ".." && !name.contains('/') &&
           !name.contains('\0');
}

} // namespace download
