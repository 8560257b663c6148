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

/// A gate at which a server waits until the test opens it.
class Gate
{
public:
    void open();
    /// Returns whether a server waits here or has waited here.
    bool isReached() const { return m_reached; }
    /// Called by the server: waits until the gate is open. Returns false after ten seconds.
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
    /// Returns the numbers of the open connections, which are links: the window closes its probes.
    QList<int> links() const { return m_server.openConnections(); }
    Link operator[](int index) const { return Link(m_server.peer(index)); }
    /// Returns the newest link. Ends the test program if there is none.
    Link link() const;

private:
    support::ScriptedServer m_server;
};

/// A camera that serves one request per connection: it sends the answer set for the longest
/// matching prefix of the request's target, then closes the connection.
class Camera
{
public:
    using Answer = support::ScriptedServer::Script;

    Camera();

    /// Answers with these bytes, unchanged.
    void answerRaw(const QByteArray& targetStart, const QByteArray& bytes);
    /// Answers with this body and its announced length.
    void answer(const QByteArray& targetStart, const QByteArray& body);
    /// Closes the connection without an answer.
    void fail(const QByteArray& targetStart);
    void on(const QByteArray& targetStart, Answer answer);
    /// Answers count, list and details like a card with these files, which have the same details.
    void holdFiles(const QList<QByteArray>& names);

    int connectionCount() const { return m_server->connectionCount(); }
    /// Returns the request heads in order of arrival, as received.
    QList<QByteArray> heads() const;
    /// Returns the text between "GET " and " HTTP/1.1" of each request.
    QList<QByteArray> targets() const;
    void forgetRequests();
    /// Returns one text for each target without an answer and each incomplete request head.
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

/// Returns an answer with this body and its announced length.
QByteArray withLength(const QByteArray& body);
/// Returns the body of a list answer.
QByteArray fileList(const QList<QByteArray>& names);

} // namespace fake
