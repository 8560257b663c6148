// POST exchanges of the HTTP client, checked by CGI programs of third-party web servers.
#include "RealServers.h"
#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <QCryptographicHash>

namespace {

/// A CGI program that reports what it received: method, type, length, digest. For the query
/// "no-length" it announces no length and adds a megabyte, so that a server cannot buffer the whole
/// answer before sending the head.
constexpr char receivingProgram[] = R"(#!/usr/bin/python3
import hashlib, os, sys
body = sys.stdin.buffer.read(int(os.environ.get("CONTENT_LENGTH") or 0))
text = "%s %s %d %s\n" % (os.environ["REQUEST_METHOD"], os.environ.get("CONTENT_TYPE", "-"),
                          len(body), hashlib.sha256(body).hexdigest())
length = "Content-Length: %d\r\n" % len(text)
if os.environ["QUERY_STRING"] == "no-length":
    length = ""
    text += "x" * 1048576
sys.stdout.write("Content-Type: text/plain\r\n" + length + "\r\n" + text)
)";

/// A CGI program that parses a multipart body with Python's mail package and reports the headers,
/// length and digest of each part.
constexpr char takingApartProgram[] = R"(#!/usr/bin/python3
import email, email.policy, hashlib, os, sys
body = sys.stdin.buffer.read(int(os.environ.get("CONTENT_LENGTH") or 0))
head = b"Content-Type: " + os.environ["CONTENT_TYPE"].encode() + b"\r\n\r\n"
message = email.message_from_bytes(head + body, policy=email.policy.HTTP)
text = "%s defects=%d\n" % (message.get_content_type(), len(message.defects))
for part in message.iter_parts():
    content = part.get_payload(decode=True)
    text += "%s | %s | %s | %d %s\n" % (part.get_param("name", header="Content-Disposition"),
                                        part.get_filename(), part.get_content_type(),
                                        len(content), hashlib.sha256(content).hexdigest())
sys.stdout.write("Content-Type: text/plain\r\nContent-Length: %d\r\n\r\n" % len(text) + text)
)";

QString digest(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

} // namespace

class RealServersPostTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aPostedBodyIsReadBackByAnotherProgram_data();
    void aPostedBodyIsReadBackByAnotherProgram();
    void aBodyPostedInStepsIsReadBackByAnotherProgram();
    void aMultipartBodyIsReadByAnotherParser_data();
    void aMultipartBodyIsReadByAnotherParser();
    void aPostsAnswerWithoutALengthStaysUnread_data();
    void aPostsAnswerWithoutALengthStaysUnread();
    void aPostToAFileIsRefused();

private:
    static Outcome post(RealServer& server, const QString& path, const QByteArray& data,
                        const std::string& type);

    RealServers m_servers;
};

void RealServersPostTest::initTestCase()
{
    const QString error = m_servers.start([](RealServer& server) {
        return server.publish(fileName(5), body(5)) &&
               server.publishProgram("cgi-bin/receive.cgi", receivingProgram) &&
               server.publishProgram("cgi-bin/take-apart.cgi", takingApartProgram);
    });
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

Outcome RealServersPostTest::post(RealServer& server, const QString& path, const QByteArray& data,
                                  const std::string& type)
{
    return bounded(server, [&] {
        Outcome outcome;
        HTTPRequest request;
        request.url = server.url(path);
        request.headers["Content-Length"] = std::to_string(data.size());
        request.headers["Content-Type"] = type;
        outcome.result =
            HTTPClient().post(request, outcome.response, data.toStdString(), outcome.body);
        return outcome;
    });
}

void RealServersPostTest::aPostedBodyIsReadBackByAnotherProgram_data()
{
    QTest::addColumn<RealServer::Kind>("kind");
    QTest::addColumn<int>("size");
    for (const auto kind : {RealServer::Lighttpd, RealServer::Busybox}) {
        for (const int size : {0, 1, 10241, megabyte}) {
            QTest::addRow("%s, %d B", serverName(kind), size) << kind << size;
        }
    }
}

void RealServersPostTest::aPostedBodyIsReadBackByAnotherProgram()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(int, size);
    const Outcome outcome =
        post(m_servers[kind], "cgi-bin/receive.cgi?", body(size), "application/x-dive");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 200);
    QCOMPARE(QString(outcome.bytes()),
             QString("POST application/x-dive %1 %2\n").arg(size).arg(digest(body(size))));
}

void RealServersPostTest::aBodyPostedInStepsIsReadBackByAnotherProgram()
{
    RealServer& lighttpd = m_servers[RealServer::Lighttpd];
    const std::string data = body(25000).toStdString();
    const Outcome outcome = bounded(lighttpd, [&] {
        Outcome steps;
        HTTPRequest request;
        request.url = lighttpd.url("cgi-bin/receive.cgi?");
        request.headers["Content-Length"] = "25000";
        request.headers["Content-Type"] = "text/plain";
        HTTPClient client;
        HTTPSession session;
        steps.result = client.startPost(session, request) &&
                       client.postData(session, data.substr(0, 1)) &&
                       client.postData(session, data.substr(1, 10000)) &&
                       client.postData(session, {}) && client.postData(session, data.substr(10001));
        client.stopPost(session, steps.response, steps.body);
        return steps;
    });
    QVERIFY(outcome.result);
    QCOMPARE(QString(outcome.bytes()), "POST text/plain 25000 " + digest(body(25000)) + "\n");
}

void RealServersPostTest::aMultipartBodyIsReadByAnotherParser_data()
{
    addServers({RealServer::Lighttpd, RealServer::Busybox});
}

void RealServersPostTest::aMultipartBodyIsReadByAnotherParser()
{
    QFETCH(RealServer::Kind, kind);
    HTTPMultipart multipart;
    multipart.boundary = "dive-boundary";
    multipart.parts[7].headers = {
        {"Content-Disposition", "form-data; name=\"recording\"; filename=\"BELUN_0001.mp4\""},
        {"Content-Type", "video/mp4"}};
    multipart.parts[7].content = body(25000).toStdString();
    multipart.parts[2].headers = {{"Content-Disposition", "form-data; name=\"depth\""}};
    multipart.parts[2].content = "12.5\r\n";
    multipart.parts[9].headers = {{"Content-Disposition", "form-data; name=\"nothing\""}};
    std::string data;
    HTTPClient().makeMultipartBody(multipart, data);

    const Outcome outcome =
        post(m_servers[kind], "cgi-bin/take-apart.cgi", QByteArray::fromStdString(data),
             "multipart/form-data; boundary=dive-boundary");
    QVERIFY(outcome.result);
    QCOMPARE(QString::fromUtf8(outcome.bytes()),
             QString("multipart/form-data defects=0\n"
                     "depth | None | text/plain | 6 %1\n"
                     "recording | BELUN_0001.mp4 | video/mp4 | 25000 %2\n"
                     "nothing | None | text/plain | 0 %3\n")
                 .arg(digest("12.5\r\n"), digest(body(25000)), digest({})));
}

void RealServersPostTest::aPostsAnswerWithoutALengthStaysUnread_data()
{
    const support::Rows<RealServer::Kind, QString, bool> row("kind", "path", "chunked");
    const QString path = "cgi-bin/receive.cgi?no-length";
    row("busybox, ended by closing", RealServer::Busybox, path, false);
    row("lighttpd, chunked", RealServer::Lighttpd, RealServer::streamedPath(path), true);
}

void RealServersPostTest::aPostsAnswerWithoutALengthStaysUnread()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(QString, path);
    QFETCH(bool, chunked);
    const Outcome outcome = post(m_servers[kind], path, body(25000), "text/plain");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 200);
    QCOMPARE(outcome.response.chunked, chunked);
    QCOMPARE(outcome.bytes(), QByteArray());
}

void RealServersPostTest::aPostToAFileIsRefused()
{
    const Outcome outcome =
        post(m_servers[RealServer::Nginx], fileName(5), body(25000), "text/plain");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 405);
    QVERIFY2(outcome.body.find("405 Not Allowed") != std::string::npos, outcome.body.c_str());
}

BELUN_NETWORK_TEST(RealServersPostTest)
#include "RealServersPostTest.moc"
