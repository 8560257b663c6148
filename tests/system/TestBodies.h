// What the real servers serve, and the rows of the tests that fetch it.
#pragma once

#include "RealServer.h"

#include <initializer_list>

#include <QByteArray>
#include <QString>
#include <QTest>

Q_DECLARE_METATYPE(RealServer::Kind)

constexpr int megabyte = 1048576;

/// A size and what it is called.
struct NamedSize
{
    const char* name;
    int size;
};

/// One byte, a few, and the lengths on both sides of what the client receives at once, up to a
/// short recording's.
constexpr NamedSize sizes[] = {
    {"1 B", 1},          {"5 B", 5},         {"10,240 B", 10240},      {"10,241 B", 10241},
    {"25,000 B", 25000}, {"1 MB", megabyte}, {"20 MB", 20 * megabyte},
};

/// Bytes of every value, the same in each run, different for each size.
const QByteArray& body(int size);

/// Under which name the servers have it.
QString fileName(int size);

/// Publishes the bodies of all sizes in a folder, which ends in a slash unless it is empty.
bool publishBodies(RealServer& server, const QString& folder);

/// Says in what two long bodies differ instead of showing them; empty when in nothing.
QByteArray difference(const QByteArray& actual, const QByteArray& expected);

/// QCOMPARE for two bodies.
#define COMPARE_BODIES(actual, expected)                                                           \
    do {                                                                                           \
        const QByteArray unlike = difference(actual, expected);                                    \
        QVERIFY2(unlike.isEmpty(), unlike.constData());                                            \
    } while (false)

const char* serverName(RealServer::Kind kind);

/// A column "kind", a row for each server.
void addServers(std::initializer_list<RealServer::Kind> kinds);

/// Columns "kind" and "size", a row for each server and size.
void addServersAndSizes(std::initializer_list<RealServer::Kind> kinds);
