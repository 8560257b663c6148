// Runs the examples of docs/http-library.md, which the build extracts from the page, and checks the
// behaviour that the page documents.
#include "http/HTTPClient.h"
#include "tests/http/TcpScene.h"
#include "tests/kit/TestMain.h"

#include <arpa/inet.h>

#include <QByteArray>
#include <QFile>
#include <QIODevice>
#include <QObject>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTest>

using support::ScriptedServer;

namespace {

const QByteArray camera = "192.168.1.120";
constexpr quint16 webPort = 80;
constexpr quint16 otherPort = 8080;

const QByteArray usualHeaders = "Accept: */*\r\nAccept-Language: zh-CN\r\n"
                                "Connection: Keep-Alive\r\n"
                                "User-Agent: SDK C++ http client\r\n\r\n";

} // namespace

class LibraryPageTest : public QObject
{
    Q_OBJECT

private slots:
    void everyExampleOfThePageIsRunHere();
    void get();
    void getSteps();
    void post();
    void postSteps();
    void multipart();
    void texts();
    void put();
    void session();
};

void LibraryPageTest::everyExampleOfThePageIsRunHere()
{
    QFile file(LIBRARY_PAGE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString page = file.readAll();
    QStringList names;
    auto match =
        QRegularExpression("^<!-- example: (.*) -->\n```cpp\n", QRegularExpression::MultilineOption)
            .globalMatch(page);
    while (match.hasNext()) {
        names += match.next().captured(1);
    }
    QCOMPARE(names.join(' '),
             QString("get again get-steps post post-steps multipart texts put session"));
    // Every code block belongs to an example.
    QCOMPARE(page.count("```"), 2 * names.size());
}

void LibraryPageTest::get()
{
    ScriptedServer server({answering("HTTP/1.1 200 OK\r\nContent-Length: 7\r\n\r\nanswer;"),
                           answering("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nlist")},
                          camera, webPort);
#include "get.inc"
    QVERIFY(found);
    QCOMPARE(body, std::string("answer;"));
#include "again.inc"
    QVERIFY(foundAgain);
    QCOMPARE(body, std::string("list"));
    QCOMPARE(response.received, 4u);
    QVERIFY(server.waitForScripts(2));
    QCOMPARE(server.received(0), "GET /cgi-bin/hi3510/getsdcareinfo.cgi HTTP/1.1\r\n"
                                 "Host: 192.168.1.120\r\n" +
                                     usualHeaders);
    QCOMPARE(server.received(1),
             "GET /sd/DCIM/list.txt HTTP/1.1\r\nHost: 192.168.1.120\r\n" + usualHeaders);
}

void LibraryPageTest::getSteps()
{
    ScriptedServer server(answering("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nlist"), camera,
                          webPort);
#include "get-steps.inc"
    QCOMPARE(body, std::string("list"));
    QCOMPARE(session.socketDescriptor, -1);
    QVERIFY(server.waitForScripts(1));
}

void LibraryPageTest::post()
{
    ScriptedServer server(answering("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok", "name=value"),
                          camera, otherPort);
#include "post.inc"
    QVERIFY(sent);
    QCOMPARE(answer, std::string("ok"));
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0), QByteArray("POST /form HTTP/1.1\r\nHost: 192.168.1.120:8080\r\n"
                                            "Accept: */*\r\nAccept-Language: zh-CN\r\n"
                                            "Connection: Keep-Alive\r\nContent-Length: 10\r\n"
                                            "Content-Type: application/x-www-form-urlencoded\r\n"
                                            "User-Agent: SDK C++ http client\r\n\r\nname=value"));
}

void LibraryPageTest::postSteps()
{
    ScriptedServer server(answering("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok", "last\n"),
                          camera, otherPort);
#include "post-steps.inc"
    QCOMPARE(response.statusCode, 200);
    QCOMPARE(answer, std::string("ok"));
    QCOMPARE(session.socketDescriptor, -1);
    QVERIFY(server.waitForScripts(1));
    QVERIFY(server.received(0).endsWith("\r\n\r\nfirst last\n"));
}

void LibraryPageTest::multipart()
{
#include "multipart.inc"
    QCOMPARE(form, std::string("--frontier\r\n"
                               "Content-Disposition: form-data; name=\"note\"\r\n"
                               "\r\n"
                               "first dive\r\n"
                               "--frontier--\r\n"));
}

void LibraryPageTest::texts()
{
#include "texts.inc"
    QVERIFY(understood);
    QCOMPARE(address, htonl(0xC0A80178));
    QCOMPARE(head, std::string("GET /list?-end=3 HTTP/1.1\r\nHost: 192.168.1.120:8080\r\n") +
                       usualHeaders.toStdString());
    QCOMPARE(name, std::string("Content-Length"));
    QCOMPARE(value, std::string("5"));
}

void LibraryPageTest::put()
{
    ScriptedServer server(answering("HTTP/1.1 201 Created\r\nContent-Length: 2\r\n\r\nok", "hello"),
                          camera, webPort);
#include "put.inc"
    QVERIFY(stored);
    QCOMPARE(response.statusCode, 201);
    QCOMPARE(answer, std::string("ok"));
    QVERIFY(server.waitForConnections(1));
    QVERIFY(server.received(0).startsWith("PUT /note.txt HTTP/1.1\r\nHost: 192.168.1.120\r\n"));
}

void LibraryPageTest::session()
{
    ScriptedServer server(answering("good day\r\nABCDE", "hello\n"), camera, otherPort);
#include "session.inc"
    QVERIFY(connected);
    QCOMPARE(line, std::string("good day\r\n"));
    QCOMPARE(block, std::string("ABCD"));
    QCOMPARE(byte, 'E');
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0), QByteArray("hello\n"));
}

BELUN_NETWORK_TEST(LibraryPageTest)
#include "LibraryPageTest.moc"
