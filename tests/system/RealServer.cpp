#include "RealServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

constexpr int startLimit = 5000; // milliseconds
constexpr int endLimit = 3000;
constexpr int probeInterval = 5;

/// Returns the path of a server program, which may be outside the search path of an ordinary user,
/// or an empty text if the program is not installed.
QString programPath(const QString& name)
{
    const QString found = QStandardPaths::findExecutable(name);
    return found.isEmpty() ? QStandardPaths::findExecutable(name, {"/usr/sbin", "/sbin"}) : found;
}

/// Returns the option that names lighttpd's module folder if that folder is near the program. This
/// is needed for a package that was unpacked instead of installed.
QStringList moduleFolderOption(const QString& program)
{
    const QDir folder(QFileInfo(program).absolutePath() + "/../lib/lighttpd");
    return folder.exists() ? QStringList{"-m", folder.absolutePath()} : QStringList();
}

} // namespace

RealServer::RealServer(Kind kind, const QString& address, int port)
    : m_kind(kind), m_address(address), m_port(port)
{
    QDir(m_folder.path()).mkdir("www");
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setWorkingDirectory(m_folder.path());
}

RealServer::~RealServer()
{
    stop();
}

bool RealServer::start()
{
    const QString configuration = m_folder.filePath("configuration");
    const QString name = m_kind == Nginx ? "nginx" : m_kind == Lighttpd ? "lighttpd" : "busybox";
    const QString program = programPath(name);
    if (program.isEmpty()) {
        m_error = name + " is not installed; its package has the same name";
        return false;
    }
    QStringList arguments;
    switch (m_kind) {
    case Nginx:
        arguments = QStringList{"-e", "stderr", "-p", m_folder.path(), "-c", configuration};
        write(configuration, nginxConfiguration());
        break;
    case Lighttpd:
        arguments = QStringList{"-D", "-f", configuration} + moduleFolderOption(program);
        write(configuration, lighttpdConfiguration());
        break;
    case Busybox:
        arguments = QStringList{"httpd", "-f",
                                "-c",    "/dev/null",
                                "-h",    m_folder.filePath("www"),
                                "-p",    QString("%1:%2").arg(m_address).arg(m_port)};
        break;
    }
    m_process.start(program, arguments, QIODevice::ReadOnly);
    const QDeadlineTimer limit(startLimit);
    while (m_process.waitForStarted(startLimit) && !limit.hasExpired()) {
        if (acceptsConnections()) {
            return true;
        }
        if (m_process.waitForFinished(probeInterval)) {
            break;
        }
    }
    m_error = QString("%1 does not run: %2 %3")
                  .arg(program, m_process.errorString(), QString::fromUtf8(m_process.readAll()));
    return false;
}

void RealServer::stop()
{
    if (m_process.state() == QProcess::NotRunning) {
        return;
    }
    m_process.terminate();
    if (!m_process.waitForFinished(endLimit)) {
        m_process.kill();
        m_process.waitForFinished(endLimit);
    }
}

bool RealServer::publish(const QString& path, const QByteArray& content)
{
    return QDir().mkpath(QFileInfo(filePath(path)).path()) && write(filePath(path), content);
}

bool RealServer::publishProgram(const QString& path, const QByteArray& script)
{
    return publish(path, script) &&
           QFile::setPermissions(filePath(path),
                                 QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

std::string RealServer::url(const QString& path) const
{
    return QString("http://%1:%2/%3").arg(m_address).arg(m_port).arg(path).toStdString();
}

bool RealServer::write(const QString& file, const QByteArray& content)
{
    QFile output(file);
    return output.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           output.write(content) == content.size();
}

// One process without a master: it can be ended by its own process id, and a server started by root
// keeps root's access. Server-side includes change no file here, but make the length unknown.
QByteArray RealServer::nginxConfiguration() const
{
    return QString(R"(
daemon off;
master_process off;
pid nginx.pid;
error_log stderr;
events {}
http {
    access_log off;
    client_body_temp_path body;
    proxy_temp_path proxy;
    fastcgi_temp_path fastcgi;
    uwsgi_temp_path uwsgi;
    scgi_temp_path scgi;
    keepalive_timeout %4ms;
    default_type application/octet-stream;
    server {
        listen %1:%2;
        root "%3/www";
        location /chunked/ { alias "%3/www/"; ssi on; ssi_types *; }
        location /closing/ {
            alias "%3/www/"; ssi on; ssi_types *; chunked_transfer_encoding off;
        }
    }
}
)")
        .arg(m_address)
        .arg(m_port)
        .arg(m_folder.path())
        .arg(keepAliveTime)
        .toUtf8();
}

// Except below "/streamed/", the server buffers a CGI answer and announces its length.
QByteArray RealServer::lighttpdConfiguration() const
{
    return QString(R"(
server.bind = "%1"
server.port = %2
server.document-root = "%3/www"
server.upload-dirs = ("%3")
server.max-keep-alive-idle = %4
server.modules = ("mod_alias", "mod_cgi")
cgi.assign = (".cgi" => "")
alias.url = ("/streamed/" => "%3/www/")
$HTTP["url"] =~ "^/streamed/" { server.stream-response-body = 1 }
)")
        .arg(m_address)
        .arg(m_port)
        .arg(m_folder.path())
        .arg(keepAliveTime / 1000)
        .toUtf8();
}

bool RealServer::acceptsConnections() const
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_addr.s_addr = inet_addr(m_address.toLatin1().constData());
    peer.sin_port = htons(static_cast<std::uint16_t>(m_port));
    const bool connected =
        ::connect(descriptor, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0;
    ::close(descriptor);
    return connected;
}
