// Simulated devices at the vehicle's real addresses: two modules whose connections the test
// controls, and a camera that answers by request target. All run in separate threads, so that they
// answer while the window's thread waits.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
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

/// One accepted connection, served by a separate thread, which alone closes the descriptor. Every
/// wait ends after ten seconds or when the server is destroyed.
class Connection
{
public:
    Connection(int descriptor, quint16 clientPort);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // May be called from any thread:
    quint16 clientPort() const { return m_clientPort; }
    void send(const QByteArray& bytes);
    /// Everything received so far.
    QByteArray received() const;
    /// Neither side has closed it.
    bool isOpen() const { return m_open; }
    /// The client has read every byte sent so far.
    bool isAllReadByClient() const;
    /// Makes the serving thread close the connection.
    void close() { m_closeWanted = true; }
    /// Same, but with a reset.
    void reset();

    // Called by the serving thread:
    /// Waits for the end of a request head; returns false if it times out.
    bool receiveHead();
    bool waitUntilClosedByClient();
    /// Receives until either side closes.
    void serve();

private:
    void receiveOnce();
    void closeDescriptor();

    const quint16 m_clientPort;
    mutable std::mutex m_mutex;
    int m_descriptor;
    QByteArray m_received;
    std::atomic<bool> m_open{true};
    std::atomic<bool> m_closeWanted{false};
    std::atomic<bool> m_resetWanted{false};
};

/// A listening socket that hands over each connection, in order of arrival.
class Listener
{
public:
    using Handler = std::function<void(Connection&)>;

    Listener(const char* address, int port, Handler handler);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// Returns the connections made so far. The count is exact, because this call makes its own
    /// connection, which is accepted after them.
    int connectionCount();
    std::shared_ptr<Connection> connection(int index) const;
    QList<int> openConnections() const;

private:
    void acceptConnections();

    const QByteArray m_address;
    const int m_port;
    const Handler m_handler;
    int m_descriptor;
    std::atomic<bool> m_stopping{false};
    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<Connection>> m_connections;
    int m_serving = 0; // active threads
    std::condition_variable m_served;
    std::thread m_acceptor;
};

/// A module: it accepts every connection and sends only what the test tells it to.
class Module
{
public:
    explicit Module(const char* address);

    int connectionCount() { return m_listener.connectionCount(); }
    /// The open connections: the links, without the probes.
    QList<int> links() const { return m_listener.openConnections(); }
    std::shared_ptr<Connection> operator[](int index) const { return m_listener.connection(index); }
    /// The newest link; there must be one.
    std::shared_ptr<Connection> link() const;

private:
    Listener m_listener;
};

/// A camera: each connection carries one request. Sends the answer set for the longest matching
/// prefix of its target, then closes the connection.
class Camera
{
public:
    using Answer = std::function<void(Connection&)>;

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

    int connectionCount() { return m_listener->connectionCount(); }
    /// Request heads in order of arrival, as received.
    QList<QByteArray> heads() const;
    /// The text between "GET " and " HTTP/1.1".
    QList<QByteArray> targets() const;
    void forgetRequests();
    /// Targets without an answer, and waits that timed out.
    QList<QByteArray> errors() const;

private:
    void serve(Connection& connection);

    mutable std::mutex m_mutex;
    std::vector<std::pair<QByteArray, Answer>> m_answers;
    QList<QByteArray> m_heads;
    QList<QByteArray> m_errors;
    std::unique_ptr<Listener> m_listener; // last, because its threads use all above
};

/// An answer with its length announced.
QByteArray withLength(const QByteArray& body);
/// The body of a list answer.
QByteArray fileList(const QList<QByteArray>& names);

/// Returns whether a connection attempt to that address is pending.
bool isConnectPending(const char* address, int port);

} // namespace fake
