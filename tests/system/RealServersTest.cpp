// The HTTP client and the download against web servers that were written by others.
#include "RealServer.h"

#include "download/DownloadFileThread.h"
#include "http/HTTPClient.h"
#include "tests/support/TestMain.h"

#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <random>

#include <sys/ioctl.h>

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QThread>

Q_DECLARE_METATYPE(RealServer::Kind)

namespace {

constexpr int megabyte = 1048576;
constexpr std::chrono::seconds exchangeLimit(10);
constexpr int waitLimit = 10000; // milliseconds

/// A program that sends the file beside it that its query names behind "&", and announces its
/// length if the query begins with "with-length".
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

/// A program that tells what it was sent: method, type, length, digest.
constexpr char receivingProgram[] = R"(#!/usr/bin/python3
import hashlib, os, sys
body = sys.stdin.buffer.read(int(os.environ.get("CONTENT_LENGTH") or 0))
text = "%s %s %d %s\n" % (os.environ["REQUEST_METHOD"], os.environ.get("CONTENT_TYPE", "-"),
                          len(body), hashlib.sha256(body).hexdigest())
length = "" if os.environ["QUERY_STRING"] == "no-length" else "Content-Length: %d\r\n" % len(text)
sys.stdout.write("Content-Type: text/plain\r\n" + length + "\r\n" + text)
)";

/// A program that takes a multipart body apart with the parser of Python's mail package and tells
/// of each part its headers, length and digest.
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

/// Bytes of every value, the same in each run, different for each size.
QByteArray content(int size)
{
    std::mt19937 random(static_cast<unsigned>(size));
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes) {
        byte = static_cast<char>(random() >> 24);
    }
    return bytes;
}

const QByteArray& body(int size)
{
    static std::map<int, QByteArray> bodies;
    const auto found = bodies.find(size);
    return found != bodies.end() ? found->second
                                 : bodies.emplace(size, content(size)).first->second;
}

QByteArray digest(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

QString fileName(int size)
{
    return QString("body-%1.bin").arg(size);
}

const std::pair<const char*, int> sizes[] = {
    {"1 B", 1},          {"5 B", 5},         {"10,240 B", 10240},      {"10,241 B", 10241},
    {"25,000 B", 25000}, {"1 MB", megabyte}, {"20 MB", 20 * megabyte},
};

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

/// What an exchange of the library gave.
struct Outcome
{
    bool result = false;
    HTTPResponse response;
    std::string body;
    qint64 milliseconds = 0;

    QByteArray bytes() const { return QByteArray::fromStdString(body); }
};

/// Says in what two long bodies differ instead of showing them.
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

} // namespace

/// QVERIFY for two bodies.
#define COMPARE_BODIES(actual, expected)                                                           \
    do {                                                                                           \
        const QByteArray unlike = difference(actual, expected);                                    \
        QVERIFY2(unlike.isEmpty(), unlike.constData());                                            \
    } while (false)

class RealServersTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void aBodyOfAnnouncedLengthArrivesWhole_data();
    void aBodyOfAnnouncedLengthArrivesWhole();
    void aChunkedBodyArrivesWhole_data();
    void aChunkedBodyArrivesWhole();
    void aProgramsAnswerWithItsLengthArrivesWhole_data();
    void aProgramsAnswerWithItsLengthArrivesWhole();
    void aProgramsAnswerGetsItsLengthFromACollectingServer();
    void aProgramsAnswerPassedOnAsItComesIsChunkedAndArrivesWhole();
    void aBodyWithoutALengthEndsWithTheFirstReceive_data();
    void aBodyWithoutALengthEndsWithTheFirstReceive();
    void anEmptyBodyLastsUntilTheServerCloses_data();
    void anEmptyBodyLastsUntilTheServerCloses();
    void aMissingFileIsAnAnswerWithItsStatusAndPage_data();
    void aMissingFileIsAnAnswerWithItsStatusAndPage();
    void aRedirectionIsNotFollowed();
    void aSecondBodyOnTheSameResponseEndsWithItsFirstReceive();
    void aPlainBodyBehindAChunkedOneOnTheSameResponseIsLost();
    void aGetInStepsIsOneConnection();

    void aPostedBodyIsReadBackByAnotherProgram_data();
    void aPostedBodyIsReadBackByAnotherProgram();
    void aBodyPostedInStepsIsReadBackByAnotherProgram();
    void aMultipartBodyIsTakenApartByAnotherParser_data();
    void aMultipartBodyIsTakenApartByAnotherParser();
    void aPostsAnswerWithoutALengthStaysUnread_data();
    void aPostsAnswerWithoutALengthStaysUnread();
    void aPostToAFileIsAnsweredWithItsRefusal();

    void aRecordingArrivesWhole_data();
    void aRecordingArrivesWhole();
    void aRefusedRequestLeavesAnEmptyRecording();
    void theErrorPageOfAMissingRecordingIsKeptAsItsContent_data();
    void theErrorPageOfAMissingRecordingIsKeptAsItsContent();
    void aRecordingWithoutALengthStaysEmpty_data();
    void aRecordingWithoutALengthStaysEmpty();
    void aShorterRecordingLeavesTheOldTailInPlace_data();
    void aShorterRecordingLeavesTheOldTailInPlace();

private:
    static void addServers(std::initializer_list<RealServer::Kind> kinds);
    static void addServersAndSizes(std::initializer_list<RealServer::Kind> kinds, int largest);
    RealServer& server(RealServer::Kind kind) { return *m_servers[kind]; }
    template <class Exchange>
    Outcome bounded(RealServer& server, Exchange exchange);
    Outcome get(RealServer& server, const QString& path);
    Outcome getOn(RealServer& server, const QString& path, HTTPResponse response);
    Outcome getWhenThereAre(int bytes, RealServer& server, const QString& path,
                            HTTPResponse response = {});
    Outcome post(RealServer& server, const QString& path, const QByteArray& data,
                 const std::string& type);
    bool startCamera(RealServer::Kind kind);
    void download(const QString& name, const std::string& urlPrefix = {});
    QByteArray recording(const QString& name) const;

    std::map<int, std::unique_ptr<RealServer>> m_servers;
    std::unique_ptr<RealServer> m_camera; // on the camera's address
    resp_header m_head;                   // of the last download
    QVariantList m_lastProgress;
};

void RealServersTest::initTestCase()
{
    int port = 8081;
    for (const auto kind : {RealServer::Nginx, RealServer::Lighttpd, RealServer::Busybox}) {
        auto& server = m_servers[kind];
        server = std::make_unique<RealServer>(kind, "127.0.0.1", port++);
        QVERIFY(server->publish("empty.bin", {}));
        QVERIFY(server->publish("folder/file", "file"));
        for (const auto& [label, size] : sizes) {
            QVERIFY(server->publish(fileName(size), body(size)));
        }
        QVERIFY(server->publish("cgi-bin/" + fileName(5), body(5)));
        QVERIFY(server->publish("cgi-bin/" + fileName(25000), body(25000)));
        QVERIFY(server->publish("cgi-bin/" + fileName(megabyte), body(megabyte)));
        QVERIFY(server->publishProgram("cgi-bin/send.cgi", sendingProgram));
        QVERIFY(server->publishProgram("cgi-bin/receive.cgi", receivingProgram));
        QVERIFY(server->publishProgram("cgi-bin/take-apart.cgi", takingApartProgram));
        QVERIFY2(server->start(), qPrintable(server->error()));
    }
}

void RealServersTest::init()
{
    m_camera.reset();
}

void RealServersTest::cleanupTestCase()
{
    m_camera.reset();
    m_servers.clear();
}

// --- the library
// ------------------------------------------------------------------------------------

/// Runs an exchange in a thread of its own. The library knows no time-out: one that lasts too long
/// is ended by ending its server, and fails the test.
template <class Exchange>
Outcome RealServersTest::bounded(RealServer& server, Exchange exchange)
{
    QElapsedTimer timer;
    timer.start();
    auto running = std::async(std::launch::async, exchange);
    if (running.wait_for(exchangeLimit) != std::future_status::ready) {
        server.stop();
        QTest::qFail("the exchange did not end by itself", __FILE__, __LINE__);
    }
    Outcome outcome = running.get();
    outcome.milliseconds = timer.elapsed();
    return outcome;
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

/// A get that reads the body when so many of its bytes have arrived: what one receive returns is
/// certain then.
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

Outcome RealServersTest::post(RealServer& server, const QString& path, const QByteArray& data,
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

void RealServersTest::addServers(std::initializer_list<RealServer::Kind> kinds)
{
    QTest::addColumn<RealServer::Kind>("kind");
    for (const auto kind : kinds) {
        QTest::newRow(serverName(kind)) << kind;
    }
}

void RealServersTest::addServersAndSizes(std::initializer_list<RealServer::Kind> kinds, int largest)
{
    QTest::addColumn<RealServer::Kind>("kind");
    QTest::addColumn<int>("size");
    for (const auto kind : kinds) {
        for (const auto& [label, size] : sizes) {
            if (size <= largest) {
                QTest::addRow("%s, %s", serverName(kind), label) << kind << size;
            }
        }
    }
}

void RealServersTest::aBodyOfAnnouncedLengthArrivesWhole_data()
{
    addServersAndSizes({RealServer::Nginx, RealServer::Lighttpd, RealServer::Busybox},
                       20 * megabyte);
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
    addServersAndSizes({RealServer::Nginx}, 20 * megabyte);
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

void RealServersTest::aProgramsAnswerWithItsLengthArrivesWhole_data()
{
    addServers({RealServer::Lighttpd, RealServer::Busybox});
}

void RealServersTest::aProgramsAnswerWithItsLengthArrivesWhole()
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

void RealServersTest::aProgramsAnswerGetsItsLengthFromACollectingServer()
{
    const Outcome outcome =
        get(server(RealServer::Lighttpd), "cgi-bin/send.cgi?without-length&" + fileName(25000));
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.contentLength, 25000U);
    COMPARE_BODIES(outcome.bytes(), body(25000));
}

void RealServersTest::aProgramsAnswerPassedOnAsItComesIsChunkedAndArrivesWhole()
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

    // However much has arrived, one get takes some of it and no more than one receive.
    outcome = get(server(kind), path);
    QVERIFY(outcome.result);
    QVERIFY2(!outcome.body.empty() && outcome.body.size() <= 10240,
             QByteArray::number(outcome.bytes().size()));
    COMPARE_BODIES(outcome.bytes(), body(size).left(outcome.bytes().size()));
}

void RealServersTest::anEmptyBodyLastsUntilTheServerCloses_data()
{
    QTest::addColumn<RealServer::Kind>("kind");
    QTest::addColumn<bool>("keepsOpen");
    QTest::newRow("nginx keeps the connection open") << RealServer::Nginx << true;
    QTest::newRow("lighttpd keeps the connection open") << RealServer::Lighttpd << true;
    QTest::newRow("busybox closes at once") << RealServer::Busybox << false;
}

void RealServersTest::anEmptyBodyLastsUntilTheServerCloses()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(bool, keepsOpen);
    const Outcome outcome = get(server(kind), "empty.bin");
    QVERIFY(!outcome.result);
    QCOMPARE(outcome.response.statusCode, 200);
    QCOMPARE(outcome.response.headers.at("Content-Length"), std::string("0"));
    QCOMPARE(outcome.bytes(), QByteArray());
    // Half of it: the servers count in whole seconds of their own clock.
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
    if (kind != RealServer::Busybox) { // whose pages have no length
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

void RealServersTest::aPlainBodyBehindAChunkedOneOnTheSameResponseIsLost()
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

// --- posting
// ------------------------------------------------------------------------------------------

void RealServersTest::aPostedBodyIsReadBackByAnotherProgram_data()
{
    QTest::addColumn<RealServer::Kind>("kind");
    QTest::addColumn<int>("size");
    for (const auto kind : {RealServer::Lighttpd, RealServer::Busybox}) {
        for (const int size : {0, 1, 10241, megabyte}) {
            QTest::addRow("%s, %d B", serverName(kind), size) << kind << size;
        }
    }
}

void RealServersTest::aPostedBodyIsReadBackByAnotherProgram()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(int, size);
    const Outcome outcome =
        post(server(kind), "cgi-bin/receive.cgi?", body(size), "application/x-dive");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 200);
    QCOMPARE(outcome.bytes(), "POST application/x-dive " + QByteArray::number(size) + " " +
                                  digest(body(size)) + "\n");
}

void RealServersTest::aBodyPostedInStepsIsReadBackByAnotherProgram()
{
    RealServer& lighttpd = server(RealServer::Lighttpd);
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
    QCOMPARE(outcome.bytes(), "POST text/plain 25000 " + digest(body(25000)) + "\n");
}

void RealServersTest::aMultipartBodyIsTakenApartByAnotherParser_data()
{
    addServers({RealServer::Lighttpd, RealServer::Busybox});
}

void RealServersTest::aMultipartBodyIsTakenApartByAnotherParser()
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
        post(server(kind), "cgi-bin/take-apart.cgi", QByteArray::fromStdString(data),
             "multipart/form-data; boundary=dive-boundary");
    QVERIFY(outcome.result);
    QCOMPARE(QString::fromUtf8(outcome.bytes()),
             QString::fromUtf8("multipart/form-data defects=0\n"
                               "depth | None | text/plain | 6 " +
                               digest("12.5\r\n") +
                               "\n"
                               "recording | BELUN_0001.mp4 | video/mp4 | 25000 " +
                               digest(body(25000)) +
                               "\n"
                               "nothing | None | text/plain | 0 " +
                               digest({}) + "\n"));
}

void RealServersTest::aPostsAnswerWithoutALengthStaysUnread_data()
{
    QTest::addColumn<RealServer::Kind>("kind");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("chunked");
    QTest::newRow("busybox, ended by closing")
        << RealServer::Busybox << "cgi-bin/receive.cgi?no-length" << false;
    QTest::newRow("lighttpd, chunked")
        << RealServer::Lighttpd << RealServer::streamedPath("cgi-bin/receive.cgi?no-length")
        << true;
}

void RealServersTest::aPostsAnswerWithoutALengthStaysUnread()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(QString, path);
    QFETCH(bool, chunked);
    const Outcome outcome = post(server(kind), path, body(25000), "text/plain");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 200);
    QCOMPARE(outcome.response.chunked, chunked);
    QCOMPARE(outcome.bytes(), QByteArray());
}

void RealServersTest::aPostToAFileIsAnsweredWithItsRefusal()
{
    const Outcome outcome = post(server(RealServer::Nginx), fileName(5), body(25000), "text/plain");
    QVERIFY(outcome.result);
    QCOMPARE(outcome.response.statusCode, 405);
    QVERIFY2(outcome.body.find("405 Not Allowed") != std::string::npos, outcome.body.c_str());
}

// --- the download
// -------------------------------------------------------------------------------------

bool RealServersTest::startCamera(RealServer::Kind kind)
{
    m_camera = std::make_unique<RealServer>(kind, "192.168.1.120", 80);
    QDir(QDir::homePath() + "/Desktop/DCIM").removeRecursively();
    if (!m_camera->start()) {
        QTest::qFail(qPrintable(m_camera->error()), __FILE__, __LINE__);
        return false;
    }
    return true;
}

/// Downloads a recording as the window does, within the limit.
void RealServersTest::download(const QString& name, const std::string& urlPrefix)
{
    DownloadFileThread thread(nullptr);
    thread.fileName = name;
    if (!urlPrefix.empty()) {
        thread.urlPrefix = QString::fromStdString(urlPrefix);
    }
    QSignalSpy finished(&thread, &DownloadFileThread::downloadFileFinished);
    QSignalSpy progress(&thread, &DownloadFileThread::updateDownloadFileProgress);
    thread.start();
    QVERIFY2(thread.wait(waitLimit), "the download did not end");
    QTRY_COMPARE(finished.count(), 1);
    m_lastProgress = progress.isEmpty() ? QVariantList() : progress.last();
    m_head = thread.respHeader;
}

QByteArray RealServersTest::recording(const QString& name) const
{
    QFile file(QDir::homePath() + "/Desktop/DCIM/" + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "no such file";
}

void RealServersTest::aRecordingArrivesWhole_data()
{
    addServersAndSizes({RealServer::Nginx, RealServer::Lighttpd}, 20 * megabyte);
}

void RealServersTest::aRecordingArrivesWhole()
{
    QFETCH(RealServer::Kind, kind);
    QFETCH(int, size);
    QVERIFY(startCamera(kind));
    QVERIFY(m_camera->publish("sd/DCIM/100ZEPNA/BELUN_0001.bin", body(size)));
    download("BELUN_0001.bin");
    QCOMPARE(m_head.status_code, 200);
    QCOMPARE(QByteArray(m_head.content_type), QByteArray("application/octet-stream"));
    QCOMPARE(m_head.content_length, static_cast<qint64>(size));
    QCOMPARE(m_lastProgress, (QVariantList{qint64(size), qint64(size)}));
    COMPARE_BODIES(recording("BELUN_0001.bin"), body(size));
}

// busybox takes no request with scheme and host in its target, and its pages have no length.
void RealServersTest::aRefusedRequestLeavesAnEmptyRecording()
{
    QVERIFY(startCamera(RealServer::Busybox));
    QVERIFY(m_camera->publish("sd/DCIM/100ZEPNA/BELUN_0001.bin", body(5)));
    download("BELUN_0001.bin");
    QCOMPARE(m_head.status_code, 400);
    QCOMPARE(m_head.content_length, qint64(0));
    QVERIFY(m_lastProgress.isEmpty());
    QCOMPARE(recording("BELUN_0001.bin"), QByteArray());
}

void RealServersTest::theErrorPageOfAMissingRecordingIsKeptAsItsContent_data()
{
    addServers({RealServer::Nginx, RealServer::Lighttpd});
}

void RealServersTest::theErrorPageOfAMissingRecordingIsKeptAsItsContent()
{
    QFETCH(RealServer::Kind, kind);
    QVERIFY(startCamera(kind));
    download("BELUN_0002.bin");
    QCOMPARE(m_head.status_code, 404);
    const QByteArray page = recording("BELUN_0002.bin");
    QCOMPARE(static_cast<qint64>(page.size()), m_head.content_length);
    QVERIFY2(page.contains("<title>404 Not Found</title>"), page.constData());
}

void RealServersTest::aRecordingWithoutALengthStaysEmpty_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::newRow("chunked") << RealServer::chunkedPath({});
    QTest::newRow("ended by closing") << RealServer::closingPath({});
}

void RealServersTest::aRecordingWithoutALengthStaysEmpty()
{
    QFETCH(QString, prefix);
    QVERIFY(startCamera(RealServer::Nginx));
    QVERIFY(m_camera->publish("BELUN_0001.bin", body(25000)));
    download("BELUN_0001.bin", m_camera->url(prefix));
    QCOMPARE(m_head.status_code, 200);
    QVERIFY(m_lastProgress.isEmpty());
    QCOMPARE(recording("BELUN_0001.bin"), QByteArray());
}

void RealServersTest::aShorterRecordingLeavesTheOldTailInPlace_data()
{
    addServers({RealServer::Nginx, RealServer::Lighttpd});
}

void RealServersTest::aShorterRecordingLeavesTheOldTailInPlace()
{
    QFETCH(RealServer::Kind, kind);
    QVERIFY(startCamera(kind));
    QVERIFY(m_camera->publish("sd/DCIM/100ZEPNA/BELUN_0001.bin", body(25000)));
    download("BELUN_0001.bin");
    QVERIFY(m_camera->publish("sd/DCIM/100ZEPNA/BELUN_0001.bin", body(10240)));
    download("BELUN_0001.bin");
    COMPARE_BODIES(recording("BELUN_0001.bin"), body(10240) + body(25000).mid(10240));
}

BELUN_NETWORK_TEST_MAIN(RealServersTest)
#include "RealServersTest.moc"
