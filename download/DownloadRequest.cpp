#include "download/DownloadRequest.h"

namespace download {

namespace {

// The fixed text between the URL and the host's name, and the fixed text after that name.
constexpr char headBeforeHost[] =
    " HTTP/1.1\r\n"
    "Accept:text/html,application/xhtml+xml,application/xml;q=0.9,image/webp,*/*;q=0.8\r\n"
    "User-Agent:Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/537(KHTML, like Gecko) "
    "Chrome/47.0.2526Safari/537.36\r\n"
    "Host:";
constexpr char headAfterHost[] = "\r\nConnection:close\r\n\r\n";

} // namespace

QByteArray requestText(const QByteArray& url, const char* host)
{
    // constData(): the URL ends at its first zero byte, like a C string.
    return QByteArray("GET ") + url.constData() + headBeforeHost + host + headAfterHost;
}

} // namespace download
