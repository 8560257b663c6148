// Simulated devices at the vehicle's real addresses: two modules whose connections the test
// controls, and a camera that answers by request target. Both are scripted servers, so they answer
// while the window's thread waits.
#pragma once

#include "tests/kit/ScriptedServer.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QList>

namespace fake {

constexpr char groundAddress[] = "192.168.1.148";
constexpr char controlAddress[] = "192.168.1.149";
constexpr char cameraAddress[] = "192.168.1.120";
constexpr int modulePort = 5000;
constexpr int cameraPort = 80;

// Prefixes of request targets.
constexpr char countTarget[] = "/cgi-bin/hi3510/getfilecount.cgi?";
constexpr char listTarget[] = "/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=";
constexpr char infoTarget[] = "/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr char deleteTarget[] = "/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr char deleteAllTarget[] = "/cgi-bin/hi3510/deleteallfiles.cgi?";
constexpr char formatTarget[] = "/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1";
constexpr char downloadTarget[] = "http://192.168.1.120/sd/DCIM/100ZEPNA/";

/// A place where a server waits until the test opens it.
class Gate
{
public:
    void open();
    /// A server waits here or has passed.
    bool isReached() const { return m_reached; }
    /// The server's side. Returns false if the test has not opened the gate within ten seconds.
    bool pass();

private:
    std::atomic<bool> m_reached{false};
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = false;
};

/// A module: it accepts every connection and sends only what the test tells it to.
class Module
{
public:
    /// A connection, controlled by the test.
    class Link
    {
    public:
        explicit Link(support::Peer& peer) : m_peer(peer) {}

        /// Sends, unless the client has closed.
        void send(const QByteArray& bytes) const { m_peer.trySend(bytes); }
        QByteArray received() const { return m_peer.received(); }
        bool isOpen() const { return m_peer.isOpen(); }
        bool isAllRead() const { return m_peer.isAllRead(); }
        void close() const { m_peer.wantClose(); }
        void reset() const { m_peer.wantReset(); }

    private:
        support::Peer& m_peer;
    };

    explicit Module(const char* address);

    int connectionCount() const { return m_server.connectionCount(); }
    /// The open connections: the links, without the probes.
    QList<int> links() const { return m_server.openConnections(); }
    Link operator[](int index) const { return Link(m_server.peer(index)); }
    /// The newest link; there must be one.
    Link link() const;

private:
    support::ScriptedServer m_server;
};

/// A camera: each connection carries one request. Sends the answer set for the longest matching
/// prefix of its target, then closes the connection.
class Camera
{
public:
    using Answer = support::ScriptedServer::Script;

    Camera();

    /// The bytes, unchanged.
    void answerRaw(const QByteArray& targetStart, const QByteArray& bytes);
    /// A body with its length announced.
    void answer(const QByteArray& targetStart, const QByteArray& body);
    /// Closes the connection without an answer.
    void fail(const QByteArray& targetStart);
    void on(const QByteArray& targetStart, Answer answer);
    /// Answers count, list and details as a card with these files; all have the same details.
    void holdFiles(const QList<QByteArray>& names);

    int connectionCount() const { return m_server->connectionCount(); }
    /// Request heads in order of arrival, as received.
    QList<QByteArray> heads() const;
    /// The text between "GET " and " HTTP/1.1".
    QList<QByteArray> targets() const;
    void forgetRequests();
    /// Targets without an answer, and waits that timed out.
    QList<QByteArray> errors() const;

private:
    void serve(support::Peer& peer);
    void note(const QByteArray& error);

    mutable std::mutex m_mutex;
    std::vector<std::pair<QByteArray, Answer>> m_answers;
    QList<QByteArray> m_heads;
    QList<QByteArray> m_errors;
    std::unique_ptr<support::ScriptedServer> m_server; // last, because its threads use all above
};

/// An answer with its length announced.
QByteArray withLength(const QByteArray& body);
/// The body of a list answer.
QByteArray fileList(const QList<QByteArray>& names);

} // namespace fake
