#include "RealServers.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <iterator>
#include <random>

#include <QElapsedTimer>

namespace {

constexpr std::chrono::seconds exchangeLimit(10);

QByteArray content(int size)
{
    std::mt19937 random(static_cast<unsigned>(size));
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes) {
        byte = static_cast<char>(random() >> 24);
    }
    return bytes;
}

} // namespace

QString RealServers::start(const std::function<bool(RealServer&)>& publish)
{
    int port = 8081;
    for (const auto kind : {RealServer::Nginx, RealServer::Lighttpd, RealServer::Busybox}) {
        auto& server = m_servers[kind];
        server = std::make_unique<RealServer>(kind, "127.0.0.1", port++);
        if (!publish(*server)) {
            return "the files cannot be written";
        }
        if (!server->start()) {
            return server->error();
        }
    }
    return {};
}

Outcome bounded(RealServer& server, const std::function<Outcome()>& exchange)
{
    QElapsedTimer timer;
    timer.start();
    auto running = std::async(std::launch::async, exchange);
    if (running.wait_for(exchangeLimit) != std::future_status::ready) {
        server.stop();
        QTest::qFail("the exchange timed out", __FILE__, __LINE__);
    }
    Outcome outcome = running.get();
    outcome.milliseconds = timer.elapsed();
    return outcome;
}

const QByteArray& body(int size)
{
    static std::map<int, QByteArray> bodies;
    const auto found = bodies.find(size);
    return found != bodies.end() ? found->second
                                 : bodies.emplace(size, content(size)).first->second;
}

QString fileName(int size)
{
    return QString("body-%1.bin").arg(size);
}

bool publishBodies(RealServer& server, const QString& folder)
{
    return std::all_of(std::begin(sizes), std::end(sizes), [&](int size) {
        return server.publish(folder + fileName(size), body(size));
    });
}

QByteArray difference(const QByteArray& actual, const QByteArray& expected)
{
    if (actual == expected) {
        return {};
    }
    const auto at = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    return QString("%1 bytes instead of %2; the first difference is at byte %3; beginning: \"%4\"")
        .arg(actual.size())
        .arg(expected.size())
        .arg(at.first - actual.begin())
        .arg(QString::fromLatin1(actual.left(60)))
        .toUtf8();
}

const char* serverName(RealServer::Kind kind)
{
    return kind == RealServer::Nginx ? "nginx"
                                     : (kind == RealServer::Lighttpd ? "lighttpd" : "busybox");
}

void addServers(std::initializer_list<RealServer::Kind> kinds)
{
    QTest::addColumn<RealServer::Kind>("kind");
    for (const auto kind : kinds) {
        QTest::newRow(serverName(kind)) << kind;
    }
}
