// The vehicle's devices as a test wants them, on their real addresses: two modules whose
// connections the test works itself, and a camera that answers by the target it is asked for. All
// run in threads of their own, so that they answer while the window's thread waits.
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

// What a request's target starts with.
constexpr char countTarget[] = "/cgi-bin/hi3510/getfilecount.cgi?";
constexpr char listTarget[] = "/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=";
constexpr char infoTarget[] = "/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr char deleteTarget[] = "/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr char deleteAllTarget[] = "/cgi-bin/hi3510/deleteallfiles.cgi?";
constexpr char formatTarget[] = "/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1";
constexpr char downloadTarget[] = "http://192.168.1.120/sd/DCIM/100ZEPNA/";

/// The place where a server waits for the test: the server passes it once the test has opened it.
class Gate
{
public:
    void open();
    /// A server stands here, or has passed.
    bool isReached() const { return m_reached; }
    /// The server's side; false when the test has not opened the gate within ten seconds.
    bool pass();

private:
    std::atomic<bool> m_reached{false};
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = false;
};

/// One accepted connection, served by a thread of its own, which alone closes the descriptor. Every
/// wait ends after ten seconds, or when the server is destroyed.
class Connection
{
public:
    Connection(int descriptor, quint16 clientPort);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // From any thread.
    quint16 clientPort() const { return m_clientPort; }
    void send(const QByteArray& bytes);
    /// Everything that came, so far.
    QByteArray received() const;
    /// Neither side has closed it.
    bool isOpen() const { return m_open; }
    /// The client's program has fetched every byte sent so far.
    bool isAllReadByClient() const;
    /// Has the serving thread close the connection.
    void close() { m_closeWanted = true; }
    /// The same, so that the client's side fails instead of reading an end.
    void reset();

    // The serving thread's.
    /// Waits for the end of a request head; false when it does not come.
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

/// A listening socket that hands over each connection, in the order they came.
class Listener
{
public:
    using Handler = std::function<void(Connection&)>;

    Listener(const char* address, int port, Handler handler);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// The connections that anyone has made until now; the count is exact, since a connection of
    /// this call's own has to be accepted behind them.
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
    int m_serving = 0; // threads at work
    std::condition_variable m_served;
    std::thread m_acceptor;
};

/// A module: it accepts whoever comes and says only what the test tells it to.
class Module
{
public:
    explicit Module(const char* address);

    int connectionCount() { return m_listener.connectionCount(); }
    /// The connections that stand: the links, without the probes.
    QList<int> links() const { return m_listener.openConnections(); }
    std::shared_ptr<Connection> operator[](int index) const { return m_listener.connection(index); }
    /// The youngest link; there has to be one.
    std::shared_ptr<Connection> link() const;

private:
    Listener m_listener;
};

/// A camera: each connection brings one request, and the answer set for the longest matching start
/// of its target is given. Then the connection is closed.
class Camera
{
public:
    using Answer = std::function<void(Connection&)>;

    Camera();

    /// Bytes given as they are.
    void answerRaw(const QByteArray& targetStart, const QByteArray& bytes);
    /// A body with its length announced.
    void answer(const QByteArray& targetStart, const QByteArray& body);
    /// The connection closed without an answer.
    void fail(const QByteArray& targetStart);
    void on(const QByteArray& targetStart, Answer answer);
    /// Answers count, list and details as a card with these files; all have the same details.
    void holdFiles(const QList<QByteArray>& names);

    int connectionCount() { return m_listener->connectionCount(); }
    /// Request heads in the order they came, as received.
    QList<QByteArray> heads() const;
    /// What stands between "GET " and " HTTP/1.1".
    QList<QByteArray> targets() const;
    void forgetRequests();
    /// Targets that no answer was set for, and waits that were in vain.
    QList<QByteArray> errors() const;

private:
    void serve(Connection& connection);

    mutable std::mutex m_mutex;
    std::vector<std::pair<QByteArray, Answer>> m_answers;
    QList<QByteArray> m_heads;
    QList<QByteArray> m_errors;
    std::unique_ptr<Listener> m_listener; // last: its threads use all above
};

/// An answer with its length announced.
QByteArray withLength(const QByteArray& body);
/// The body of a list answer.
QByteArray fileList(const QList<QByteArray>& names);

/// Someone is waiting for that address to answer a connection attempt.
bool isConnectPending(const char* address, int port);

} // namespace fake
