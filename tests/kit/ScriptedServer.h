// A device simulated by a test.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <sys/types.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace support {

/// The server's side of one connection, controlled by a script. Every waiting call times out after
/// five seconds; then the script ends and the test fails. When the server stops, a waiting script
/// ends silently.
class Peer
{
public:
    /// Receives up to and including the marker; bytes after it are kept for the next call.
    QByteArray receiveUntil(const QByteArray& marker);
    QByteArray receiveExactly(int count);

    void send(const QByteArray& bytes);
    /// Sends the bytes split after each of the given offsets. Each piece is sent after the client
    /// has read everything before it, so that no receive of the client returns parts of two pieces.
    void sendInPieces(const QByteArray& bytes, const std::vector<int>& cuts);
    /// Sends each byte separately, like sendInPieces().
    void sendBytewise(const QByteArray& bytes);
    /// Waits until the client has read everything sent so far.
    void waitUntilRead();

    void close(); ///< Closes normally; everything received until then is recorded.
    void reset(); ///< Closes with a reset.

    /// Waits until the client closes or resets; received bytes are only recorded.
    void waitUntilClosedByClient();
    /// Waits until the condition holds, for example until the test lets the script continue.
    void waitUntil(const std::function<bool()>& condition);
    /// Keeps the connection open until the server stops; received bytes are only recorded.
    void holdOpen();

    /// Receives until the client closes, or until wantClose() or wantReset() is called.
    void serve();

    // These may be called from any thread:

    /// Returns the number of this connection, counted from 0.
    int number() const { return m_number; }
    /// Returns everything received so far.
    QByteArray received() const;
    /// Returns whether neither side has closed. A close by the client is noticed only when
    /// receiving.
    bool isOpen() const { return m_open; }
    /// Returns whether the client has read everything sent so far.
    bool isAllRead() const;
    /// Sends. Returns an empty text, or why not everything was sent.
    QString trySend(const QByteArray& bytes);
    /// Closes the sending side; still receives.
    void halfClose();
    /// Makes serve() close the connection.
    void wantClose() { m_wantedEnd = End::Close; }
    /// Makes serve() reset the connection.
    void wantReset() { m_wantedEnd = End::Reset; }

    ~Peer();
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

private:
    friend class ScriptedServer;
    Peer(int descriptor, int number, const std::atomic<bool>& stopping);

    /// Receives once more; returns false if the client closed or reset.
    bool receiveMore(std::chrono::steady_clock::time_point deadline, const char* waitedFor);
    bool takeArrived();
    void waitUntilReadable(std::chrono::steady_clock::time_point deadline, const char* waitedFor);
    void closeDescriptor();
    /// Returns how many bytes were sent, or the error as a negative number.
    ssize_t sendNow(const char* bytes, qint64 count);
    QByteArray takePending(int count);

    enum class End { None, Close, Reset };

    // Guards the descriptor, which only the script's thread closes, while another thread uses it.
    mutable std::mutex m_descriptorMutex;
    std::atomic<int> m_descriptor;
    const int m_number;
    const std::atomic<bool>& m_stopping;
    std::atomic<bool> m_open{true};
    std::atomic<End> m_wantedEnd{End::None};
    QByteArray m_pending;
    mutable std::mutex
        m_mutex; // for m_received: written by the script's thread, read by the test's thread
    QByteArray m_received;
};

/// A server that listens on an address from construction on and runs a script in a separate thread
/// for each connection. It records everything received per connection. When it is destroyed in the
/// test's thread, errors that the test has not queried fail the test.
class ScriptedServer
{
public:
    using Script = std::function<void(Peer&)>;

    /// Uses one script for every connection.
    explicit ScriptedServer(Script script, const QByteArray& address = "127.0.0.1",
                            quint16 port = 0);
    /// Uses one script per connection, in order; an extra connection is an error.
    explicit ScriptedServer(std::vector<Script> scripts, const QByteArray& address = "127.0.0.1",
                            quint16 port = 0);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    QByteArray address() const { return m_address; }
    quint16 port() const { return m_port; } ///< The chosen port, if 0 was requested.

    /// Returns the number of connections made so far, including those not yet accepted.
    int connectionCount() const;
    /// Returns a connection, which must exist. It lives as long as the server.
    Peer& peer(int connection) const;
    /// Returns the numbers of the open connections.
    QList<int> openConnections() const;
    /// Returns everything received on a connection so far; empty for one that does not exist yet.
    QByteArray received(int connection) const;
    /// Returns one text for each failed script and each connection without a script.
    QStringList errors() const;

    /// The next three wait, processing events. They return false after the limit in milliseconds.
    bool waitForConnections(int count, int limit = 5000) const;
    bool waitForReceived(int connection, const QByteArray& bytes, int limit = 5000) const;
    /// Waits until the scripts of `count` connections have ended.
    bool waitForScripts(int count, int limit = 5000) const;

    /// Stops listening, ends the scripts, closes every connection and refuses new ones.
    void stop();

private:
    struct Connection;

    void listenOn(quint16 port);
    void acceptConnections();
    void runScript(Connection& connection, const Script& script);
    void joinFinished();
    int acceptedConnections() const;
    bool isConnectionWaiting() const;
    int finishedScripts() const;

    const QByteArray m_address;
    quint16 m_port = 0;
    const std::vector<Script> m_scripts;
    const bool m_oneForAll;
    int m_listener = -1;
    std::atomic<bool> m_listening{true};
    std::atomic<bool> m_stopping{false}; // tells the scripts to stop
    mutable std::mutex m_mutex;          // guards the next two members
    std::vector<std::unique_ptr<Connection>> m_connections;
    QStringList m_errors;
    std::vector<Connection*> m_running; // connections whose threads have not been joined yet
    mutable std::atomic<bool> m_errorsSeen{false};
    std::thread m_thread;
};

} // namespace support
