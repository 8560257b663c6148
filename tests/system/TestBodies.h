// The files served by the real servers, and the rows of the tests that fetch them.
#pragma once

#include "RealServer.h"

#include <initializer_list>

#include <QByteArray>
#include <QString>
#include <QTest>

Q_DECLARE_METATYPE(RealServer::Kind)

constexpr int megabyte = 1048576;

/// A size and its name.
struct NamedSize
{
    const char* name;
    int size;
};

/// One byte, a few bytes, the lengths around the client's receive size, up to the size of a short
/// recording.
constexpr NamedSize sizes[] = {
    {"1 B", 1},          {"5 B", 5},         {"10,240 B", 10240},      {"10,241 B", 10241},
    {"25,000 B", 25000}, {"1 MB", megabyte}, {"20 MB", 20 * megabyte},
};

/// Returns a body of that many pseudo-random bytes, the same in each run and different for each
/// size.
const QByteArray& body(int size);

/// Returns the name of the file on the server.
QString fileName(int size);

/// Publishes the bodies of all sizes in a folder; its path ends in a slash unless it is empty.
bool publishBodies(RealServer& server, const QString& folder);

/// Returns how two long bodies differ, quoting only the beginning, or an empty text if they are
/// equal.
QByteArray difference(const QByteArray& actual, const QByteArray& expected);

/// QCOMPARE for two bodies.
#define COMPARE_BODIES(actual, expected)                                                           \
    do {                                                                                           \
        const QByteArray unlike = difference(actual, expected);                                    \
        QVERIFY2(unlike.isEmpty(), unlike.constData());                                            \
    } while (false)

const char* serverName(RealServer::Kind kind);

/// Adds a column "kind" and one row per server.
void addServers(std::initializer_list<RealServer::Kind> kinds);

/// Adds columns "kind" and "size" and one row per server and size.
void addServersAndSizes(std::initializer_list<RealServer::Kind> kinds);
