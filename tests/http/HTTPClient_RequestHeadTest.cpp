// makeHeader. Sending the head is tested in HTTPClient_ExchangeTest.
#include "http/HTTPClient.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QObject>
#include <QTest>

class HTTPClient_RequestHeadTest : public QObject
{
    Q_OBJECT

private slots:
    void newRequestGivesItsSevenLines();
    void requestLineBeginsWithTheMethod_data();
    void requestLineBeginsWithTheMethod();
    void hostLineNamesThePortUnlessItIs80_data();
    void hostLineNamesThePortUnlessItIs80();
    void headerLinesComeInByteOrderAndNoneIsAdded();
    void hostInTheMapIsWrittenASecondTime();
    void versionAndPathAreWrittenUnchanged();
    void headsAreAppended();
    void requestIsLeftAsItWas();
    void headMayBeAppendedToATextOfTheRequest();
};

static std::string headOf(HTTPRequest request, HTTP_REQ_TYPE type = HTTP_REQ_GET)
{
    std::string head;
    HTTPClient().makeHeader(type, request, head);
    return head;
}

/// Returns a request whose head consists of the first two lines and the empty line.
static HTTPRequest bareRequest()
{
    HTTPRequest request;
    request.host = "host";
    request.headers.clear();
    return request;
}

void HTTPClient_RequestHeadTest::newRequestGivesItsSevenLines()
{
    HTTPRequest request;
    request.host = "192.168.1.120";
    request.path = "/a";
    QCOMPARE(headOf(request), std::string("GET /a HTTP/1.1\r\n"
                                          "Host: 192.168.1.120\r\n"
                                          "Accept: */*\r\n"
                                          "Accept-Language: zh-CN\r\n"
                                          "Connection: Keep-Alive\r\n"
                                          "User-Agent: SDK C++ http client\r\n"
                                          "\r\n"));
}

void HTTPClient_RequestHeadTest::requestLineBeginsWithTheMethod_data()
{
    const support::Rows<int, QByteArray> row("type", "head");
    row("get", 1, "GET / HTTP/1.1\r\nHost: host\r\n\r\n");
    row("post", 2, "POST / HTTP/1.1\r\nHost: host\r\n\r\n");
    row("put", 3, "PUT / HTTP/1.1\r\nHost: host\r\n\r\n");
    row("delete", 4, "DELETE / HTTP/1.1\r\nHost: host\r\n\r\n");
    row("unknown: 0", 0, " / HTTP/1.1\r\nHost: host\r\n\r\n");
    row("unknown: 5", 5, " / HTTP/1.1\r\nHost: host\r\n\r\n");
    row("unknown: -1", -1, " / HTTP/1.1\r\nHost: host\r\n\r\n");
}

void HTTPClient_RequestHeadTest::requestLineBeginsWithTheMethod()
{
    QFETCH(int, type);
    const std::string head = headOf(bareRequest(), static_cast<HTTP_REQ_TYPE>(type));
    QTEST(QByteArray::fromStdString(head), "head");
}

void HTTPClient_RequestHeadTest::hostLineNamesThePortUnlessItIs80_data()
{
    const support::Rows<int, QByteArray> row("port", "head");
    row("80", 80, "GET / HTTP/1.1\r\nHost: host\r\n\r\n");
    row("8080", 8080, "GET / HTTP/1.1\r\nHost: host:8080\r\n\r\n");
    row("443", 443, "GET / HTTP/1.1\r\nHost: host:443\r\n\r\n");
    row("0", 0, "GET / HTTP/1.1\r\nHost: host:0\r\n\r\n");
    row("-1", -1, "GET / HTTP/1.1\r\nHost: host:-1\r\n\r\n");
    row("65616, whose low 16 bits are 80", 65616, "GET / HTTP/1.1\r\nHost: host:65616\r\n\r\n");
}

void HTTPClient_RequestHeadTest::hostLineNamesThePortUnlessItIs80()
{
    QFETCH(int, port);
    HTTPRequest request = bareRequest();
    request.port = port;
    QTEST(QByteArray::fromStdString(headOf(request)), "head");
}

void HTTPClient_RequestHeadTest::headerLinesComeInByteOrderAndNoneIsAdded()
{
    HTTPRequest request = bareRequest();
    request.headers = {{"b", "1"}, {"A", ""}, {"Content-Type", "text/plain"}, {"", "no name"}};
    QCOMPARE(headOf(request, HTTP_REQ_POST), std::string("POST / HTTP/1.1\r\n"
                                                         "Host: host\r\n"
                                                         ": no name\r\n"
                                                         "A: \r\n"
                                                         "Content-Type: text/plain\r\n"
                                                         "b: 1\r\n"
                                                         "\r\n"));
}

void HTTPClient_RequestHeadTest::hostInTheMapIsWrittenASecondTime()
{
    HTTPRequest request = bareRequest();
    request.headers["Host"] = "other";
    QCOMPARE(headOf(request), std::string("GET / HTTP/1.1\r\nHost: host\r\nHost: other\r\n\r\n"));
}

void HTTPClient_RequestHeadTest::versionAndPathAreWrittenUnchanged()
{
    HTTPRequest request = bareRequest();
    request.version = "HTTP/1.0";
    request.path = "/a b?c=\xE4%20\"";
    request.host = "";
    QCOMPARE(headOf(request), std::string("GET /a b?c=\xE4%20\" HTTP/1.0\r\nHost: \r\n\r\n"));
    request.path = "";
    request.version = "";
    QCOMPARE(headOf(request), std::string("GET  \r\nHost: \r\n\r\n"));
}

void HTTPClient_RequestHeadTest::headsAreAppended()
{
    HTTPRequest request = bareRequest();
    HTTP_REQ_TYPE type = HTTP_REQ_GET;
    std::string out = "before";
    HTTPClient().makeHeader(type, request, out);
    HTTPClient().makeHeader(type, request, out);
    QCOMPARE(out, std::string("beforeGET / HTTP/1.1\r\nHost: host\r\n\r\n"
                              "GET / HTTP/1.1\r\nHost: host\r\n\r\n"));
}

void HTTPClient_RequestHeadTest::requestIsLeftAsItWas()
{
    HTTPRequest request;
    request.url = "http://other:1/p";
    request.host = "host";
    HTTP_REQ_TYPE type = HTTP_REQ_PUT;
    std::string out;
    HTTPClient().makeHeader(type, request, out);
    QCOMPARE(int(type), 3);
    QCOMPARE(request.url, std::string("http://other:1/p"));
    QCOMPARE(request.host, std::string("host"));
    QCOMPARE(request.port, 80);
    QCOMPARE(request.path, std::string("/"));
    QVERIFY(request.headers == HTTPRequest().headers);
}

void HTTPClient_RequestHeadTest::headMayBeAppendedToATextOfTheRequest()
{
    HTTPRequest fresh;
    fresh.host = "h";
    fresh.headers = {{"N", "V"}};
    const std::string head = "GET / HTTP/1.1\r\nHost: h\r\nN: V\r\n\r\n";
    HTTP_REQ_TYPE type = HTTP_REQ_GET;
    for (std::string HTTPRequest::*text :
         {&HTTPRequest::version, &HTTPRequest::host, &HTTPRequest::path, &HTTPRequest::url}) {
        HTTPRequest request = fresh;
        HTTPClient().makeHeader(type, request, request.*text);
        QCOMPARE(request.*text, fresh.*text + head);
    }
    HTTPRequest request = fresh;
    HTTPClient().makeHeader(type, request, request.headers["N"]);
    QCOMPARE(request.headers["N"], "V" + head);
}

BELUN_TEST(HTTPClient_RequestHeadTest)
#include "HTTPClient_RequestHeadTest.moc"
