// GET exchanges of the HTTP client with third-party web servers.
#include "BoundedExchange.h"
#include "RealServer.h"
#include "TestBodies.h"
#include "http/HTTPClient.h"
#include "tests/kit/TestMain.h"

#include <map>
#include <memory>

#include <sys/ioctl.h>

#include <QElapsedTimer>
#include <QThread>

namespace {

constexpr int waitLimit = 10000; // milliseconds

/// A CGI program for queries such as "with-length&NAME": sends the file NAME from its own folder,
/// and announces the length of the file only if the query begins with "with-length".
constexpr char sendingProgram[] = R"(#!/usr/bin/python3
import os, sys
announce, name = os.environ["QUERY_STRING"].split("&")
with open(os.path.join(os.path.dirname(os.path.abspath(sys.argv[0])), name), "rb") as file:
    body = file.read()
head = b"Content-Type: application/octet-stream\r\n"
if announce == "with-length":
    head += b"Content-Length: %d\r\n" % len(body)
sys.stdout.buffer.write(head + b"\r\n" + body)
)";

} // namespace

class RealServersTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aBodyOfAnnouncedLengthArrivesWhole_data();
    void aBodyOfAnnouncedLengthArrivesWhole();
    void aChunkedBodyArrivesWhole_data();
    void aChunkedBodyArrivesWhole();
    void aCgiAnswerWithALengthArrivesWhole_data();
    void aCgiAnswerWithALengthArrivesWhole();
    void aBufferedCgiAnswerGetsItsLengthFromTheServer();
    void aStreamedCgiAnswerIsChunkedAndArrivesWhole();
    void aBodyWithoutALengthEndsWithTheFirstReceive_data();
    void aBodyWithoutALengthEndsWithTheFirstReceive();
    void anEmptyBodyWaitsUntilTheServerCloses_data();
    void anEmptyBodyWaitsUntilTheServerCloses();
    void aMissingFileIsAnAnswerWithItsStatusAndPage_data();
    void aMissingFileIsAnAnswerWithItsStatusAndPage();
    void aRedirectionIsNotFollowed();
    void aSecondBodyOnTheSameResponseEndsWithItsFirstReceive();
    void aPlainBodyAfterAChunkedOneOnTheSameResponseIsLost();
    void aGetInStepsIsOneConnection();

private:
    RealServer& server(RealServer::Kind kind) { return *m_servers[kind]; }
    static Outcome get(RealServer& server, const QString& path);
    static Outcome getOn(RealServer& server, const QString& path, HTTPResponse response);
    static Outcome getWhenThereAre(int bytes, RealServer& server, const QString& path,
                                   HTTPResponse response = {});

    std::map<RealServer::Kind, std::unique_ptr<RealServer>> m_servers;
};

void RealServersTest::initTestCase()
{
    int port = 8081;
    for (const auto kind : {RealServer::Nginx, RealServer::Lighttpd, RealServer::Busybox}) {
        auto& server = m_servers[kind];
        server = std::make_unique<RealServer>(kind, "127.0.0.1", port++);
        QVERIFY(publishBodies(*server, {}));
        QVERIFY(publishBodies(*server, "cgi-bin/"));
        QVERIFY(server->publish("empty.bin", {}));
        QVERIFY(server->publish("folder/file", "file"));
        QVERIFY(server->publishProgram("cgi-bin/send.cgi", sendingProgram));
        QVERIFY2(server->start(), qPrintable(server->error()));
    }
}

Outcome RealServersTest::getOn(RealServer& server, const QString& path, HTTPResponse response)
{
    return bounded(server, [&] {
        Outcome outcome;
        outcome.response = response;
        HTTPRequest request;
        request.url = server.url(path);
        outcome.result = HTTPClient().get(request, outcome.response, outcome.body);
        return outcome;
    });
}

Outcome RealServersTest::get(RealServer& server, const QString& path)
{
    return getOn(server, path, {});
}

/// Performs a GET that reads the body only after `bytes` bytes of it have arrived, so that the size
/// of the first receive is known.
Outcome RealServersTest::getWhenThereAre(int bytes, RealServer& server, const QString& path,
                                         HTTPResponse response)
{
    return bounded(server, [&] {
        Outcome outcome;
        outcome.response = response;
        HTTPRequest request;
        request.url = server.url(path);
        HTTPClient client;
        HTTPSession session;
        if (client.startGet(session, outcome.response, request)) {
            int arrived = 0;
            QElapsedTimer timer;
            timer.start();
            while (arrived < bytes && timer.elapsed() < waitLimit &&
                   ::ioctl(session.socketDescriptor, FIONREAD, &arrived) == 0) {
                QThread::yieldCurrentThread();
            }
            outcome.result = client.getData(session, outcome.response, outcome.body);
        }
        client.stopGet(session);
        return outcome;
    });
}

void RealServersTest::aBodyOfAnnouncedLengthArrivesWhole_data()
{
    addServersAndSizes({RealServer::Nginx, RealServer::Lighttpd, RealServer::Busybox});
}

void RealServersTest::aBodyOfAnnouncedLengthArrivesWhole()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(int, size);
    const Outcome outcome = get(server(kind), fileName(size));
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 200);
    QVERIFY(!outcome.response.chunked);
    QCOMPARE(outcome.response.contentLength, static_cast<std::uint32_t>(size));
    QCOMPARE(outcome.response.received, static_cast<std::uint32_t>(size));
    COMPARE_BODIES(outcome.bytes(), body(size));
}

void RealServersTest::aChunkedBodyArrivesWhole_data()
{
    addServersAndSizes({RealServer::Nginx});
}

void RealServersTest::aChunkedBodyArrivesWhole()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(int, size);
    const Outcome outcome = get(server(kind), RealServer::chunkedPath(fileName(size)));
    QVERIFY(outcome.result);
    QVERIFY(outcome.response.chunked);
    QVERIFY(outcome.response.lastChunkSeen);
    QCOMPARE(outcome.response.contentLength, 0U);
    QCOMPARE(outcome.response.received, static_cast<std::uint32_t>(size));
    COMPARE_BODIES(outcome.bytes(), body(size));
}

void RealServersTest::aCgiAnswerWithALengthArrivesWhole_data()
{
    addServers({RealServer::Lighttpd, RealServer::Busybox});
}

void RealServersTest::aCgiAnswerWithALengthArrivesWhole()
{
    QFETCH(RealServer::Kind, kind);
    for (const int size : {5, 25000, megabyte}) {
        const Outcome outcome = get(server(kind), "cgi-bin/send.cgi?with-length&" + fileName(size));
        QVERIFY(outcome.result);
        QCOMPARE(outcome.response.statusCode, 200);
        QCOMPARE(outcome.response.contentLength, static_cast<std::uint32_t>(size));
        COMPARE_BODIES(outcome.bytes(), body(size));
    }
}

void RealServersTest::aBufferedCgiAnswerGetsItsLengthFromTheServer()
{
    const Outcome outcome =
        get(server(RealServer::Lighttpd), "cgi-bin/send.cgi?without-length&" + fileName(25000));
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.contentLength, 25000U);
    COMPARE_BODIES(outcome.bytes(), body(25000));
}

void RealServersTest::aStreamedCgiAnswerIsChunkedAndArrivesWhole()
{
    const Outcome outcome =
        get(server(RealServer::Lighttpd),
            RealServer::streamedPath("cgi-bin/send.cgi?without-length&" + fileName(megabyte)));
    QVERIFY(outcome.result);
    QVERIFY(outcome.response.chunked);
    COMPARE_BODIES(outcome.bytes(), body(megabyte));
}

void RealServersTest::aBodyWithoutALengthEndsWithTheFirstReceive_data()
{
    QTest::addColumn<RealServer::Kind>("kind");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("taken");
    const auto addRows = [](RealServer::Kind kind, const QString& before) {
        QTest::addRow("%s, 5 B", serverName(kind)) << kind << before + fileName(5) << 5 << 5;
        QTest::addRow("%s, 25,000 B", serverName(kind))
            << kind << before + fileName(25000) << 25000 << 10240;
    };
    addRows(RealServer::Nginx, RealServer::closingPath({}));
    addRows(RealServer::Busybox, "cgi-bin/send.cgi?without-length&");
}

void RealServersTest::aBodyWithoutALengthEndsWithTheFirstReceive()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(QString, path);
    QFETCH(int, size);
    QFETCH(int, taken);
    Outcome outcome = getWhenThereAre(size, server(kind), path);
    QVERIFY(outcome.result);
    QVERIFY(!outcome.response.chunked);
    QCOMPARE(outcome.response.contentLength, 0U);
    COMPARE_BODIES(outcome.bytes(), body(size).left(taken));

    // Without an announced length, a GET returns the bytes of exactly one receive, however many
    // those are.
    outcome = get(server(kind), path);
    QVERIFY(outcome.result);
    QVERIFY2(!outcome.body.empty() && outcome.body.size() <= 10240,
             QByteArray::number(outcome.bytes().size()));
    COMPARE_BODIES(outcome.bytes(), body(size).left(outcome.bytes().size()));
}

void RealServersTest::anEmptyBodyWaitsUntilTheServerCloses_data()
{
    QTest::addColumn<RealServer::Kind>("kind");
    QTest::addColumn<bool>("keepsOpen");
    QTest::newRow("nginx keeps the connection open") << RealServer::Nginx << true;
    QTest::newRow("lighttpd keeps the connection open") << RealServer::Lighttpd << true;
    QTest::newRow("busybox closes at once") << RealServer::Busybox << false;
}

void RealServersTest::anEmptyBodyWaitsUntilTheServerCloses()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(bool, keepsOpen);
    const Outcome outcome = get(server(kind), "empty.bin");
    QVERIFY(!outcome.result);
    QCOMPARE(outcome.response.statusCode, 200);
    QCOMPARE(outcome.response.headers.at("Content-Length"), std::string("0"));
    QCOMPARE(outcome.bytes(), QByteArray());
    // Half of the time is enough: servers count in whole seconds and may close early.
    if (keepsOpen) {
        QVERIFY2(outcome.milliseconds >= RealServer::keepAliveTime / 2,
                 QByteArray::number(outcome.milliseconds) + " ms");
    }
}

void RealServersTest::aMissingFileIsAnAnswerWithItsStatusAndPage_data()
{
    addServers({RealServer::Nginx, RealServer::Lighttpd, RealServer::Busybox});
}

void RealServersTest::aMissingFileIsAnAnswerWithItsStatusAndPage()
{
    QFETCH(RealServer::Kind, kind);
    const Outcome outcome = get(server(kind), "no/such/file");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 404);
    if (kind != RealServer::Busybox) { // its error pages have no length
        QCOMPARE(outcome.body.size(), static_cast<std::size_t>(outcome.response.contentLength));
        QVERIFY2(outcome.body.find("404 Not Found") != std::string::npos, outcome.body.c_str());
    }
    QVERIFY(!outcome.body.empty());
}

void RealServersTest::aRedirectionIsNotFollowed()
{
    const Outcome outcome = get(server(RealServer::Nginx), "folder");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 301);
    QCOMPARE(outcome.response.headers.at("Location"), std::string("http://127.0.0.1:8081/folder/"));
    QVERIFY2(outcome.body.find("301 Moved Permanently") != std::string::npos, outcome.body.c_str());
}

void RealServersTest::aSecondBodyOnTheSameResponseEndsWithItsFirstReceive()
{
    RealServer& nginx = server(RealServer::Nginx);
    const Outcome first = get(nginx, fileName(10241));
    COMPARE_BODIES(first.bytes(), body(10241));
    const Outcome second = getWhenThereAre(10241, nginx, fileName(10241), first.response);
    QVERIFY(second.result);
    COMPARE_BODIES(second.bytes(), body(10241).left(10240));
    QCOMPARE(second.response.received, 20481U);
}

void RealServersTest::aPlainBodyAfterAChunkedOneOnTheSameResponseIsLost()
{
    RealServer& nginx = server(RealServer::Nginx);
    const Outcome first = get(nginx, RealServer::chunkedPath(fileName(25000)));
    COMPARE_BODIES(first.bytes(), body(25000));
    const Outcome second = getOn(nginx, fileName(25000), first.response);
    QVERIFY(second.result);
    QVERIFY(second.response.chunked);
    QCOMPARE(second.response.contentLength, 25000U);
    COMPARE_BODIES(second.bytes(), QByteArray());
}

void RealServersTest::aGetInStepsIsOneConnection()
{
    RealServer& lighttpd = server(RealServer::Lighttpd);
    const Outcome outcome = bounded(lighttpd, [&] {
        Outcome steps;
        HTTPRequest request;
        request.url = lighttpd.url(fileName(25000));
        HTTPClient client;
        HTTPSession session;
        if (client.startGet(session, steps.response, request)) {
            const int descriptor = session.socketDescriptor;
            steps.result = client.getData(session, steps.response, steps.body) &&
                           session.socketDescriptor == descriptor;
        }
        client.stopGet(session);
        steps.result = steps.result && session.socketDescriptor == -1;
        return steps;
    });
    QVERIFY(outcome.result);
    COMPARE_BODIES(outcome.bytes(), body(25000));
}

BELUN_NETWORK_TEST(RealServersTest)
#include "RealServersTest.moc"
