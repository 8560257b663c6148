// A web server from a Debian package, run by a test.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// A process of nginx, lighttpd or busybox httpd in the foreground, with the test's privileges and
/// all files in a temporary folder; the system's own service and its files are not touched. The
/// destructor ends the server by its own process id. start() and stop() must be called in the
/// thread that created the object.
class RealServer
{
public:
    enum Kind { Nginx, Lighttpd, Busybox };

    /// How long nginx and lighttpd keep an idle connection open, in milliseconds.
    static constexpr int keepAliveTime = 1000;

    RealServer(Kind kind, const QString& address, int port);
    ~RealServer();
    RealServer(const RealServer&) = delete;
    RealServer& operator=(const RealServer&) = delete;

    /// Starts the server. Returns true as soon as the server accepts connections, or false if it
    /// does not within five seconds or cannot run; error() then returns the reason.
    bool start();
    void stop();
    QString error() const { return m_error; }

    /// Creates a file below the document root; "path" has no leading slash.
    bool publish(const QString& path, const QByteArray& content);

    /// Creates a CGI program below the document root. nginx does not run CGI programs.
    bool publishProgram(const QString& path, const QByteArray& script);

    /// Returns the address of a path, including scheme and port.
    std::string url(const QString& path) const;

    // Other paths of a published file. nginx only: sends the file without an announced length,
    // either chunked or ended by closing the connection.
    static QString chunkedPath(const QString& path) { return "chunked/" + path; }
    static QString closingPath(const QString& path) { return "closing/" + path; }
    // lighttpd only: streams the answer of the CGI program instead of buffering it.
    static QString streamedPath(const QString& path) { return "streamed/" + path; }

private:
    QString filePath(const QString& path) const { return m_folder.filePath("www/" + path); }
    bool write(const QString& file, const QByteArray& content);
    QByteArray nginxConfiguration() const;
    QByteArray lighttpdConfiguration() const;
    bool acceptsConnections() const;

    const Kind m_kind;
    const QString m_address;
    const int m_port;
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_error;
};
