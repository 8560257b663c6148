#include "tests/kit/ScriptedServer.h"

#include "tests/kit/ScriptEnd.h"
#include "tests/kit/TcpTable.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QThread>

namespace support {

namespace {

constexpr int queueLength = 64;

} // namespace

struct ScriptedServer::Connection
{
    Connection(int descriptor, int number, const std::atomic<bool>& stopping)
        : peer(descriptor, number, stopping)
    {
    }
    Peer peer;
    std::atomic<bool> finished{false};
    std::thread thread;
};

ScriptedServer::ScriptedServer(Script script, const QByteArray& address, quint16 port)
    : m_address(address), m_scripts{std::move(script)}, m_oneForAll(true)
{
    listenOn(port);
}

ScriptedServer::ScriptedServer(std::vector<Script> scripts, const QByteArray& address, quint16 port)
    : m_address(address), m_scripts(std::move(scripts)), m_oneForAll(false)
{
    listenOn(port);
}

ScriptedServer::~ScriptedServer()
{
    stop();
    if (!m_errors.isEmpty() && !m_errorsSeen &&
        QThread::currentThread() == QCoreApplication::instance()->thread()) {
        QTest::qFail(qPrintable(m_errors.join(QLatin1Char('\n'))), __FILE__, __LINE__);
    }
}

void ScriptedServer::listenOn(quint16 port)
{
    // Not blocking, because a client may give up between poll and accept.
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int on = 1;
    ::setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in place = socketAddress(m_address.constData(), port);
    socklen_t size = sizeof place;
    if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&place), size) != 0 ||
        ::listen(m_listener, queueLength) != 0 ||
        ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&place), &size) != 0) {
        qFatal("cannot listen on %s:%d", m_address.constData(), port);
    }
    m_port = ntohs(place.sin_port);
    m_thread = std::thread([this] { acceptConnections(); });
}

void ScriptedServer::acceptConnections()
{
    while (m_listening) {
        pollfd state{m_listener, POLLIN, 0};
        if (::poll(&state, 1, scriptStep) <= 0) {
            continue;
        }
        joinFinished();
        const std::lock_guard<std::mutex> lock(m_mutex);
        const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0) {
            continue;
        }
        const std::size_t number = m_connections.size();
        m_connections.push_back(
            std::make_unique<Connection>(descriptor, static_cast<int>(number), m_stopping));
        Connection& connection = *m_connections.back();
        if (!m_oneForAll && number >= m_scripts.size()) {
            m_errors.append(QStringLiteral("connection %1 has no script").arg(number));
            connection.peer.close();
            connection.finished = true;
            continue;
        }
        const Script& script = m_scripts[m_oneForAll ? 0 : number];
        connection.thread =
            std::thread([this, &connection, &script] { runScript(connection, script); });
        m_running.push_back(&connection);
    }
}

void ScriptedServer::runScript(Connection& connection, const Script& script)
{
    try {
        script(connection.peer);
    } catch (const ScriptFailed& failure) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_errors.append(
            QStringLiteral("connection %1: %2").arg(connection.peer.number()).arg(failure.reason));
    } catch (const ScriptStopped&) {
    }
    connection.peer.close();
    connection.finished = true;
}

/// Joins the threads whose scripts have ended, so that ended threads do not accumulate.
void ScriptedServer::joinFinished()
{
    const auto ended = std::partition(m_running.begin(), m_running.end(),
                                      [](const Connection* one) { return !one->finished; });
    std::for_each(ended, m_running.end(), [](Connection* one) { one->thread.join(); });
    m_running.erase(ended, m_running.end());
}

void ScriptedServer::stop()
{
    // The listener is closed before the connections, so that a client that reconnects immediately
    // is refused.
    m_listening = false;
    if (m_thread.joinable()) {
        ::shutdown(m_listener, SHUT_RDWR); // ends the thread's wait for a connection
        m_thread.join();
        ::close(m_listener);
    }
    m_stopping = true;
    for (Connection* connection : m_running) {
        connection->thread.join();
    }
    m_running.clear();
}

int ScriptedServer::acceptedConnections() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_connections.size());
}

bool ScriptedServer::isConnectionWaiting() const
{
    pollfd state{m_listener, POLLIN, 0};
    if (::poll(&state, 1, 0) > 0) {
        return true;
    }
    const std::uint32_t address = inet_addr(m_address.constData());
    const std::vector<TcpSocket> sockets = tcpSockets();
    return std::any_of(sockets.begin(), sockets.end(), [&](const TcpSocket& socket) {
        return socket.state == TCP_SYN_RECV && socket.localAddress == address &&
               socket.localPort == m_port;
    });
}

int ScriptedServer::connectionCount() const
{
    const auto deadline = std::chrono::steady_clock::now() + scriptPatience;
    while (m_listening && std::chrono::steady_clock::now() < deadline) {
        {
            // While this thread holds the lock, every accepted connection is in the list.
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (!isConnectionWaiting()) {
                return static_cast<int>(m_connections.size());
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return acceptedConnections();
}

QByteArray ScriptedServer::received(int connection) const
{
    return connection < acceptedConnections() ? peer(connection).received() : QByteArray();
}

Peer& ScriptedServer::peer(int connection) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_connections.at(static_cast<std::size_t>(connection))->peer;
}

QList<int> ScriptedServer::openConnections() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QList<int> open;
    for (const auto& connection : m_connections) {
        if (connection->peer.isOpen()) {
            open.append(connection->peer.number());
        }
    }
    return open;
}

QStringList ScriptedServer::errors() const
{
    m_errorsSeen = true;
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_errors;
}

bool ScriptedServer::waitForConnections(int count, int limit) const
{
    return QTest::qWaitFor([&] { return acceptedConnections() >= count; }, limit);
}

bool ScriptedServer::waitForReceived(int connection, const QByteArray& bytes, int limit) const
{
    return QTest::qWaitFor([&] { return received(connection).contains(bytes); }, limit);
}

int ScriptedServer::finishedScripts() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    int finished = 0;
    for (const auto& connection : m_connections) {
        finished += connection->finished ? 1 : 0;
    }
    return finished;
}

bool ScriptedServer::waitForScripts(int count, int limit) const
{
    return QTest::qWaitFor([&] { return finishedScripts() >= count; }, limit);
}

} // namespace support
