// GET exchanges of the HTTP client with third-party web servers.
#include "RealServers.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <sys/ioctl.h>

#include <QElapsedTimer>
#include <QThread>

namespace {

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

    void aBodyArrivesWhole_data();
    void aBodyArrivesWhole();
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
    static Outcome get(RealServer& server, const QString& path);
    static Outcome getOn(RealServer& server, const QString& path, HTTPResponse response);
    static Outcome getWhenThereAre(int bytes, RealServer& server, const QString& path,
                                   HTTPResponse response = {});

    RealServers m_servers;
};

void RealServersTest::initTestCase()
{
    const QString error = m_servers.start([](RealServer& server) {
        return publishBodies(server, {}) && publishBodies(server, "cgi-bin/") &&
               server.publish("empty.bin", {}) && server.publish("folder/file", "file") &&
               server.publishProgram("cgi-bin/send.cgi", sendingProgram);
    });
    QVERIFY2(error.isEmpty(), qPrintable(error));
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

void RealServersTest::aBodyArrivesWhole_data()
{
    using Kind = RealServer::Kind;
    const support::Rows<Kind, QString, int, bool> row("kind", "path", "size", "chunked");
    const auto rows = [&row](Kind kind, const char* how, const QString& folder, int size,
                             bool chunked) {
        row(qPrintable(QString("%1, %2, %3 B").arg(serverName(kind), how).arg(size)), kind,
            folder + fileName(size), size, chunked);
    };
    for (const int size : sizes) {
        rows(Kind::Nginx, "file", "", size, false);
        rows(Kind::Lighttpd, "file", "", size, false);
        rows(Kind::Busybox, "file", "", size, false);
        rows(Kind::Nginx, "chunked", RealServer::chunkedPath({}), size, true);
    }
    const QString sender = "cgi-bin/send.cgi?";
    for (const int size : {5, 25000, megabyte}) {
        rows(Kind::Lighttpd, "CGI", sender + "with-length&", size, false);
        rows(Kind::Busybox, "CGI", sender + "with-length&", size, false);
    }
    // The server adds the length to a CGI answer that it buffers.
    rows(Kind::Lighttpd, "buffered CGI", sender + "without-length&", 25000, false);
    rows(Kind::Lighttpd, "streamed CGI", RealServer::streamedPath(sender + "without-length&"),
         megabyte, true);
}

void RealServersTest::aBodyArrivesWhole()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(QString, path);
    QFETCH(int, size);
    QFETCH(bool, chunked);
    const Outcome outcome = get(m_servers[kind], path);
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 200);
    QCOMPARE(outcome.response.chunked, chunked);
    QCOMPARE(outcome.response.lastChunkSeen, chunked);
    QCOMPARE(outcome.response.contentLength, static_cast<std::uint32_t>(chunked ? 0 : size));
    QCOMPARE(outcome.response.received, static_cast<std::uint32_t>(size));
    COMPARE_BODIES(outcome.bytes(), body(size));
}

void RealServersTest::aBodyWithoutALengthEndsWithTheFirstReceive_data()
{
    using Kind = RealServer::Kind;
    const support::Rows<Kind, QString, int, int> row("kind", "path", "size", "taken");
    const QString closing = RealServer::closingPath({});
    const QString sender = "cgi-bin/send.cgi?without-length&";
    row("nginx, 5 B", Kind::Nginx, closing + fileName(5), 5, 5);
    row("nginx, 25,000 B", Kind::Nginx, closing + fileName(25000), 25000, 10240);
    row("busybox, 5 B", Kind::Busybox, sender + fileName(5), 5, 5);
    row("busybox, 25,000 B", Kind::Busybox, sender + fileName(25000), 25000, 10240);
}

void RealServersTest::aBodyWithoutALengthEndsWithTheFirstReceive()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(QString, path);
    QFETCH(int, size);
    QFETCH(int, taken);
    Outcome outcome = getWhenThereAre(size, m_servers[kind], path);
    QVERIFY(outcome.result);
    QVERIFY(!outcome.response.chunked);
    QCOMPARE(outcome.response.contentLength, 0U);
    COMPARE_BODIES(outcome.bytes(), body(size).left(taken));

    // Without an announced length, a GET returns the bytes of exactly one receive, however many
    // those are.
    outcome = get(m_servers[kind], path);
    QVERIFY(outcome.result);
    QVERIFY2(!outcome.body.empty() && outcome.body.size() <= 10240,
             QByteArray::number(outcome.bytes().size()));
    COMPARE_BODIES(outcome.bytes(), body(size).left(outcome.bytes().size()));
}

void RealServersTest::anEmptyBodyWaitsUntilTheServerCloses_data()
{
    const support::Rows<RealServer::Kind, bool> row("kind", "keepsOpen");
    row("nginx keeps the connection open", RealServer::Nginx, true);
    row("lighttpd keeps the connection open", RealServer::Lighttpd, true);
    row("busybox closes at once", RealServer::Busybox, false);
}

void RealServersTest::anEmptyBodyWaitsUntilTheServerCloses()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(bool, keepsOpen);
    const Outcome outcome = get(m_servers[kind], "empty.bin");
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
    const Outcome outcome = get(m_servers[kind], "no/such/file");
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
    const Outcome outcome = get(m_servers[RealServer::Nginx], "folder");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 301);
    QCOMPARE(outcome.response.headers.at("Location"), std::string("http://127.0.0.1:8081/folder/"));
    QVERIFY2(outcome.body.find("301 Moved Permanently") != std::string::npos, outcome.body.c_str());
}

void RealServersTest::aSecondBodyOnTheSameResponseEndsWithItsFirstReceive()
{
    RealServer& nginx = m_servers[RealServer::Nginx];
    const Outcome first = get(nginx, fileName(10241));
    COMPARE_BODIES(first.bytes(), body(10241));
    const Outcome second = getWhenThereAre(10241, nginx, fileName(10241), first.response);
    QVERIFY(second.result);
    COMPARE_BODIES(second.bytes(), body(10241).left(10240));
    QCOMPARE(second.response.received, 20481U);
}

void RealServersTest::aPlainBodyAfterAChunkedOneOnTheSameResponseIsLost()
{
    RealServer& nginx = m_servers[RealServer::Nginx];
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
    RealServer& lighttpd = m_servers[RealServer::Lighttpd];
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
