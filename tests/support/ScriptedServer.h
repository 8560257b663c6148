// A device played by a test.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <QByteArray>
#include <QStringList>

namespace support {

/// The server's side of one connection, in the hands of a script. Every call that waits does so
/// for five seconds at most; when what it waits for does not come, the script ends there and the
/// test fails. When the server itself ends, a waiting script ends silently.
class Peer
{
public:
    /// Bytes up to and with the marker; what arrived behind it is kept for the next call.
    QByteArray receiveUntil(const QByteArray& marker);
    QByteArray receiveExactly(int count);
    /// Everything up to the client's close.
    QByteArray receiveUntilClosed();

    void send(const QByteArray& bytes);
    /// Sends the bytes cut behind each of the given offsets. Each piece goes when the client has
    /// read all before it, so no receive of the client's returns parts of two.
    void sendInPieces(const QByteArray& bytes, const std::vector<int>& cuts);
    /// Each byte by itself, as above.
    void sendBytewise(const QByteArray& bytes);
    /// Waits until the client has taken everything sent so far out of its socket.
    void waitUntilRead();

    void close();     ///< Closes in the ordinary way; what has arrived until then is recorded.
    void reset();     ///< Closes with a reset.
    void halfClose(); ///< Sends the end; still receives.

    /// Waits for the client's close or reset; what arrives meanwhile is recorded only.
    void waitUntilClosedByClient();
    /// Waits until the condition holds, for example until the test lets the script go on.
    void waitUntil(const std::function<bool()>& condition);
    /// Keeps the connection open until the server ends; what arrives meanwhile is recorded only.
    void holdOpen();

    /// Number of this connection, from 0.
    int number() const { return m_number; }

    ~Peer();
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

private:
    friend class ScriptedServer;
    Peer(int descriptor, int number, const std::atomic<bool>& stopping);

    /// Receives once more; false at the client's close or reset.
    bool receiveMore(std::chrono::steady_clock::time_point deadline, const char* waitedFor);
    bool takeArrived();
    void waitUntilReadable(std::chrono::steady_clock::time_point deadline, const char* waitedFor);
    void closeDescriptor();
    bool clientHasRead() const;
    QByteArray takePending(int count);

    int m_descriptor;
    const int m_number;
    const std::atomic<bool>& m_stopping;
    QByteArray m_pending;
    mutable std::mutex m_mutex; // of m_received: the script's thread adds, the test's thread reads
    QByteArray m_received;
};

/// Listens on an address, ready when constructed, and runs a script in a thread of its own for
/// each connection. All that it received is kept per connection. When it ends in the test's
/// thread, errors that the test has not asked for fail the test.
class ScriptedServer
{
public:
    using Script = std::function<void(Peer&)>;

    /// One script for every connection.
    explicit ScriptedServer(Script script, const QByteArray& address = "127.0.0.1",
                            quint16 port = 0);
    /// One script per connection in their order; a connection too many is an error.
    explicit ScriptedServer(std::vector<Script> scripts, const QByteArray& address = "127.0.0.1",
                            quint16 port = 0);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    QByteArray address() const { return m_address; }
    quint16 port() const { return m_port; } ///< The port chosen, where 0 was asked for.

    int connectionCount() const;
    /// Everything received on a connection so far; empty for one that has not come.
    QByteArray received(int connection) const;
    /// Scripts that failed, and connections without a script, one text each.
    QStringList errors() const;

    /// These wait, processing events, and tell whether it happened within the limit.
    bool waitForConnections(int count, int limit = 5000) const;
    bool waitForReceived(int connection, const QByteArray& bytes, int limit = 5000) const;
    /// All connections have come and their scripts have ended.
    bool waitForScripts(int count, int limit = 5000) const;

    /// Stops listening, ends the scripts and closes every connection, from here on refusing new
    /// ones.
    void stop();

private:
    struct Connection;

    void listenOn(quint16 port);
    void acceptConnections();
    void runScript(Connection& connection, const Script& script);
    int finishedScripts() const;

    const QByteArray m_address;
    quint16 m_port = 0;
    const std::vector<Script> m_scripts;
    const bool m_oneForAll;
    int m_listener = -1;
    std::atomic<bool> m_listening{true};
    std::atomic<bool> m_stopping{false}; // of the scripts
    mutable std::mutex m_mutex;          // of the following two
    std::vector<std::unique_ptr<Connection>> m_connections;
    QStringList m_errors;
    mutable std::atomic<bool> m_errorsSeen{false};
    std::thread m_thread;
};

} // namespace support
