// The third-party servers of a test, the files that they serve, and exchanges with them.
#pragma once

#include "RealServer.h"
#include "http/HTTPClient.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>

#include <QByteArray>
#include <QString>
#include <QTest>

Q_DECLARE_METATYPE(RealServer::Kind)

constexpr int waitLimit = 10000; // milliseconds to wait for a server's answer

/// One server of each kind, at 127.0.0.1 and the ports from 8081 on.
class RealServers
{
public:
    /// Publishes each server's files and starts the server. Returns the reason for a failure, or an
    /// empty text.
    QString start(const std::function<bool(RealServer&)>& publish);
    RealServer& operator[](RealServer::Kind kind) { return *m_servers[kind]; }

private:
    std::map<RealServer::Kind, std::unique_ptr<RealServer>> m_servers;
};

/// The result of an exchange.
struct Outcome
{
    bool result = false;
    HTTPResponse response;
    std::string body;
    qint64 milliseconds = 0;

    QByteArray bytes() const { return QByteArray::fromStdString(body); }
};

/// Runs an exchange in a separate thread. The client has no timeout: an exchange that takes ten
/// seconds is ended by stopping its server and fails the test.
Outcome bounded(RealServer& server, const std::function<Outcome()>& exchange);

constexpr int megabyte = 1048576;

/// One byte, a few bytes, the lengths around the client's receive size, up to the size of a short
/// recording.
constexpr int sizes[] = {1, 5, 10240, 10241, 25000, megabyte, 20 * megabyte};

/// Returns a body of that many pseudo-random bytes, the same in each run and different for each
/// size.
const QByteArray& body(int size);

/// Returns the name of the file on the server.
QString fileName(int size);

/// Publishes the bodies of all sizes in a folder. `folder` must end in a slash or be empty.
bool publishBodies(RealServer& server, const QString& folder);

/// Returns how two long bodies differ, quoting only the beginning of `actual`, or an empty text if
/// they are equal.
QByteArray difference(const QByteArray& actual, const QByteArray& expected);

/// QCOMPARE for two bodies.
#define COMPARE_BODIES(actual, expected)                                                           \
    do {                                                                                           \
        const QByteArray unlike = difference(actual, expected);                                    \
        QVERIFY2(unlike.isEmpty(), unlike.constData());                                            \
    } while (false)

const char* serverName(RealServer::Kind kind);

/// Adds a column "kind" and one row per server.
void addServers(std::initializer_list<RealServer::Kind> kinds);
