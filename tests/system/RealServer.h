// A web server out of a Debian package, run by a test for itself.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// Runs nginx, lighttpd or busybox httpd in the foreground, with the rights of the test and with
/// everything it reads and writes in a temporary folder: the system's own service and its files are
/// not touched. Ended, by its own process number, with this object. One thread.
class RealServer
{
public:
    enum Kind { Nginx, Lighttpd, Busybox };

    /// For how long the servers keep a connection open that nobody uses, in milliseconds.
    static constexpr int keepAliveTime = 1000;

    RealServer(Kind kind, const QString& address, int port);
    ~RealServer();
    RealServer(const RealServer&) = delete;
    RealServer& operator=(const RealServer&) = delete;

    /// Starts the server and returns when it accepts connections. False, with error() telling why,
    /// when it does not within five seconds.
    bool start();
    void stop();
    QString error() const { return m_error; }

    /// Puts a file below the document root; "path" has no leading slash.
    bool publish(const QString& path, const QByteArray& content);

    /// Puts a CGI program below the document root. nginx runs none.
    bool publishProgram(const QString& path, const QByteArray& script);

    /// The address of a path, scheme and port included.
    std::string url(const QString& path) const;

    // What the servers add to a path. nginx only: the file, its length not announced.
    static QString chunkedPath(const QString& path) { return "chunked/" + path; }
    static QString closingPath(const QString& path) { return "closing/" + path; }
    // lighttpd only: the CGI program, its answer passed on as it comes.
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
