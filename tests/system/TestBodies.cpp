#include "TestBodies.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <random>

namespace {

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
    return std::all_of(std::begin(sizes), std::end(sizes), [&](const NamedSize& named) {
        return server.publish(folder + fileName(named.size), body(named.size));
    });
}

QByteArray difference(const QByteArray& actual, const QByteArray& expected)
{
    if (actual == expected) {
        return {};
    }
    int at = 0;
    while (at < actual.size() && at < expected.size() && actual[at] == expected[at]) {
        ++at;
    }
    return QString("%1 bytes in place of %2, different from byte %3 on; they begin with \"%4\"")
        .arg(actual.size())
        .arg(expected.size())
        .arg(at)
        .arg(QString::fromLatin1(actual.left(60)))
        .toUtf8();
}

const char* serverName(RealServer::Kind kind)
{
    switch (kind) {
    case RealServer::Nginx:
        return "nginx";
    case RealServer::Lighttpd:
        return "lighttpd";
    case RealServer::Busybox:
        break;
    }
    return "busybox";
}

void addServers(std::initializer_list<RealServer::Kind> kinds)
{
    QTest::addColumn<RealServer::Kind>("kind");
    for (const auto kind : kinds) {
        QTest::newRow(serverName(kind)) << kind;
    }
}

void addServersAndSizes(std::initializer_list<RealServer::Kind> kinds)
{
    QTest::addColumn<RealServer::Kind>("kind");
    QTest::addColumn<int>("size");
    for (const auto kind : kinds) {
        for (const auto& [label, size] : sizes) {
            QTest::addRow("%s, %s", serverName(kind), label) << kind << size;
        }
    }
}
