#include "tests/kit/FakeVehicle.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QFile>
#include <QList>
#include <QtGlobal>

namespace fake {

namespace {

constexpr std::chrono::seconds patience(10);
constexpr int pollInterval = 5; // milliseconds
constexpr int queueLength = 64;
constexpr int synSent = 2; // in the kernel's TCP table

sockaddr_in socketAddress(const char* address, int port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = inet_addr(address);
    result.sin_port = htons(static_cast<quint16>(port));
    return result;
}

int listenOn(const char* address, int port)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const sockaddr_in place = socketAddress(address, port);
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
        ::listen(descriptor, queueLength) != 0) {
        qFatal("cannot listen on %s:%d: %s", address, port, qPrintable(qt_error_string(errno)));
    }
    return descriptor;
}

quint16 localPort(int descriptor)
{
    sockaddr_in local{};
    socklen_t size = sizeof local;
    ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&local), &size);
    return ntohs(local.sin_port);
}

/// One line of the kernel's TCP table.
struct SocketState
{
    quint32 localAddress;
    quint16 localPort;
    quint32 remoteAddress;
    quint16 remotePort;
    int state;
    uint unread;
};

std::vector<SocketState> allSockets()
{
    std::vector<SocketState> sockets;
    QFile table(QStringLiteral("/proc/net/tcp"));
    if (!table.open(QIODevice::ReadOnly)) {
        qFatal("no table of TCP sockets");
    }
    for (const QByteArray& line : table.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() < 5 || !fields[1].contains(':')) {
            continue;
        }
        const auto number = [](const QByteArray& text) { return text.toUInt(nullptr, 16); };
        const QList<QByteArray> local = fields[1].split(':');
        const QList<QByteArray> remote = fields[2].split(':');
        sockets.push_back({number(local[0]), static_cast<quint16>(number(local[1])),
                           number(remote[0]), static_cast<quint16>(number(remote[1])),
                           static_cast<int>(number(fields[3])),
                           number(fields[4].split(':').last())});
    }
    return sockets;
}

QByteArray targetOf(const QByteArray& head)
{
    const auto end = head.lastIndexOf(" HTTP/1.1\r\n");
    return head.startsWith("GET ") && end >= 4 ? head.mid(4, end - 4) : QByteArray();
}

} // namespace

void Gate::open()
{
    const std::lock_guard lock(m_mutex);
    m_open = true;
    m_changed.notify_all();
}

bool Gate::pass()
{
    std::unique_lock lock(m_mutex);
    m_reached = true;
    return m_changed.wait_for(lock, patience, [this] { return m_open; });
}

Connection::Connection(int descriptor, quint16 clientPort)
    : m_clientPort(clientPort), m_descriptor(descriptor)
{
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Connection::~Connection()
{
    closeDescriptor();
}

void Connection::send(const QByteArray& bytes)
{
    int sent = 0;
    while (sent < bytes.size() && m_open && !m_closeWanted) {
        const std::lock_guard lock(m_mutex);
        pollfd ready{m_descriptor, POLLOUT, 0};
        if (::poll(&ready, 1, pollInterval) < 1) {
            continue;
        }
        const ssize_t count =
            ::send(m_descriptor, bytes.constData() + sent,
                   static_cast<std::size_t>(bytes.size() - sent), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN) {
            return; // the client has disconnected
        }
        sent += static_cast<int>(std::max<ssize_t>(count, 0));
    }
}

QByteArray Connection::received() const
{
    const std::lock_guard lock(m_mutex);
    return m_received;
}

bool Connection::isAllReadByClient() const
{
    const std::lock_guard lock(m_mutex);
    int unacknowledged = 0;
    ::ioctl(m_descriptor, SIOCOUTQ, &unacknowledged);
    const std::vector<SocketState> sockets = allSockets();
    return unacknowledged == 0 &&
           std::none_of(sockets.begin(), sockets.end(), [this](const SocketState& socket) {
               return socket.localPort == m_clientPort && socket.unread > 0;
           });
}

void Connection::reset()
{
    m_resetWanted = true;
    m_closeWanted = true;
}

bool Connection::receiveHead()
{
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!m_received.endsWith("\r\n\r\n") && m_open && !m_closeWanted &&
           std::chrono::steady_clock::now() < end) {
        receiveOnce();
    }
    return m_received.endsWith("\r\n\r\n");
}

bool Connection::waitUntilClosedByClient()
{
    const auto end = std::chrono::steady_clock::now() + patience;
    while (m_open && !m_closeWanted && std::chrono::steady_clock::now() < end) {
        receiveOnce();
    }
    return !m_open;
}

void Connection::serve()
{
    while (m_open && !m_closeWanted) {
        receiveOnce();
    }
    closeDescriptor();
}

void Connection::receiveOnce()
{
    pollfd ready{m_descriptor, POLLIN, 0};
    if (::poll(&ready, 1, pollInterval) < 1) {
        return;
    }
    std::array<char, 65536> buffer;
    const ssize_t count = ::recv(m_descriptor, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count > 0) {
        const std::lock_guard lock(m_mutex);
        m_received.append(buffer.data(), static_cast<int>(count));
    } else if (count == 0 || errno != EAGAIN) {
        m_open = false;
    }
}

void Connection::closeDescriptor()
{
    const std::lock_guard lock(m_mutex);
    m_open = false;
    if (m_descriptor < 0) {
        return;
    }
    if (m_resetWanted) {
        const linger atOnce{1, 0};
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    }
    ::close(m_descriptor);
    m_descriptor = -1;
}

Listener::Listener(const char* address, int port, Handler handler)
    : m_address(address), m_port(port), m_handler(std::move(handler)),
      m_descriptor(listenOn(address, port))
{
    m_acceptor = std::thread([this] { acceptConnections(); });
}

Listener::~Listener()
{
    m_stopping = true;
    m_acceptor.join();
    ::close(m_descriptor);
    std::unique_lock lock(m_mutex);
    for (const auto& connection : m_connections) {
        connection->close();
    }
    m_served.wait(lock, [this] { return m_serving == 0; });
}

void Listener::acceptConnections()
{
    while (!m_stopping) {
        pollfd ready{m_descriptor, POLLIN, 0};
        if (::poll(&ready, 1, pollInterval) < 1) {
            continue;
        }
        sockaddr_in client{};
        socklen_t size = sizeof client;
        const int descriptor =
            ::accept4(m_descriptor, reinterpret_cast<sockaddr*>(&client), &size, SOCK_CLOEXEC);
        if (descriptor < 0) {
            continue;
        }
        auto connection = std::make_shared<Connection>(descriptor, ntohs(client.sin_port));
        const std::lock_guard lock(m_mutex);
        m_connections.push_back(connection);
        ++m_serving;
        std::thread([this, connection] {
            m_handler(*connection);
            connection->close();
            connection->serve();
            const std::lock_guard served(m_mutex);
            --m_serving;
            m_served.notify_all();
        }).detach();
    }
}

int Listener::connectionCount()
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in place = socketAddress(m_address, m_port);
    if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) {
        qFatal("cannot connect to %s", m_address.constData());
    }
    const quint16 port = localPort(descriptor);
    const auto end = std::chrono::steady_clock::now() + patience;
    bool accepted = false;
    int others = 0;
    while (!accepted && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const std::lock_guard lock(m_mutex);
        accepted =
            !m_connections.empty() &&
            std::any_of(m_connections.begin(), m_connections.end(), [port](const auto& connection) {
                return connection->clientPort() == port;
            });
        if (accepted) {
            // Not one of the connections under test, so it is not counted.
            m_connections.erase(std::find_if(
                m_connections.begin(), m_connections.end(),
                [port](const auto& connection) { return connection->clientPort() == port; }));
            others = static_cast<int>(m_connections.size());
        }
    }
    ::close(descriptor);
    return accepted ? others : -1;
}

std::shared_ptr<Connection> Listener::connection(int index) const
{
    const std::lock_guard lock(m_mutex);
    return m_connections.at(static_cast<std::size_t>(index));
}

QList<int> Listener::openConnections() const
{
    const std::lock_guard lock(m_mutex);
    QList<int> open;
    for (std::size_t index = 0; index < m_connections.size(); ++index) {
        if (m_connections[index]->isOpen()) {
            open.append(static_cast<int>(index));
        }
    }
    return open;
}

Module::Module(const char* address)
    : m_listener(address, modulePort, [](Connection& connection) { connection.serve(); })
{
}

std::shared_ptr<Connection> Module::link() const
{
    const QList<int> open = links();
    if (open.isEmpty()) {
        qFatal("the module has no link");
    }
    return m_listener.connection(open.last());
}

Camera::Camera()
    : m_listener(std::make_unique<Listener>(cameraAddress, cameraPort,
                                            [this](Connection& connection) { serve(connection); }))
{
}

void Camera::on(const QByteArray& targetStart, Answer answer)
{
    const std::lock_guard lock(m_mutex);
    for (auto& [start, old] : m_answers) {
        if (start == targetStart) {
            old = std::move(answer);
            return;
        }
    }
    m_answers.emplace_back(targetStart, std::move(answer));
}

void Camera::answerRaw(const QByteArray& targetStart, const QByteArray& bytes)
{
    on(targetStart, [bytes](Connection& connection) { connection.send(bytes); });
}

void Camera::answer(const QByteArray& targetStart, const QByteArray& body)
{
    answerRaw(targetStart, withLength(body));
}

void Camera::fail(const QByteArray& targetStart)
{
    on(targetStart, [](Connection&) {});
}

void Camera::holdFiles(const QList<QByteArray>& names)
{
    answer(countTarget, "var filecount=\"" + QByteArray::number(names.size()) + "\";\r\n");
    answer(listTarget, fileList(names));
    answer(infoTarget,
           "var create=\"20200131124502\";\r\nvar size=\"1572864\";\r\nvar time=\"37\";\r\n");
}

QList<QByteArray> Camera::heads() const
{
    const std::lock_guard lock(m_mutex);
    return m_heads;
}

QList<QByteArray> Camera::targets() const
{
    QList<QByteArray> targets;
    for (const QByteArray& head : heads()) {
        targets.append(targetOf(head));
    }
    return targets;
}

void Camera::forgetRequests()
{
    const std::lock_guard lock(m_mutex);
    m_heads.clear();
}

QList<QByteArray> Camera::errors() const
{
    const std::lock_guard lock(m_mutex);
    return m_errors;
}

void Camera::serve(Connection& connection)
{
    if (!connection.receiveHead()) {
        if (!connection.received().isEmpty()) {
            const std::lock_guard lock(m_mutex);
            m_errors.append("no whole head: " + connection.received());
        }
        return;
    }
    const QByteArray head = connection.received();
    const QByteArray target = targetOf(head);
    Answer answer;
    {
        const std::lock_guard lock(m_mutex);
        m_heads.append(head);
        qint64 longest = -1;
        for (const auto& [start, candidate] : m_answers) {
            if (target.startsWith(start) && start.size() > longest) {
                longest = start.size();
                answer = candidate;
            }
        }
        if (!answer) {
            m_errors.append("no answer for " + target);
            return;
        }
    }
    answer(connection);
}

QByteArray withLength(const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
           body;
}

QByteArray fileList(const QList<QByteArray>& names)
{
    QByteArray list;
    for (const QByteArray& name : names) {
        list += "sd/DCIM/100ZEPNA/" + name + ";";
    }
    return list + "\r\n";
}

bool isConnectPending(const char* address, int port)
{
    const sockaddr_in place = socketAddress(address, port);
    const std::vector<SocketState> sockets = allSockets();
    return std::any_of(sockets.begin(), sockets.end(), [&place, port](const SocketState& socket) {
        return socket.state == synSent && socket.remoteAddress == place.sin_addr.s_addr &&
               socket.remotePort == port;
    });
}

} // namespace fake
