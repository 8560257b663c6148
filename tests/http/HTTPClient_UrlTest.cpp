#include "http/HTTPClient.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QObject>
#include <QTest>

class HTTPClient_UrlTest : public QObject
{
    Q_OBJECT

private slots:
    void addressIsSplit_data();
    void addressIsSplit();
    void addressIsRefusedAndNothingIsWritten_data();
    void addressIsRefusedAndNothingIsWritten();
    void nothingIsResetToItsDefaultBetweenAddresses();
    void addressItselfAndHeadersStayAsTheyWere();
};

/// Returns a request whose fields differ from the defaults, so that a test sees which ones are set.
static HTTPRequest usedRequest(const QByteArray& url)
{
    HTTPRequest request;
    request.url = url.toStdString();
    request.host = "before";
    request.port = 1234;
    request.path = "/before";
    return request;
}

void HTTPClient_UrlTest::addressIsSplit_data()
{
    const support::Rows<QByteArray, QByteArray, int, QByteArray> row("url", "host", "port", "path");

    // Without a port, the old value 1234 is kept; without a path, the old value "/before".
    row("eight characters are enough", "http://a", "a", 1234, "/before");
    row("host alone", "http://camera", "camera", 1234, "/before");
    row("prefix repeated", "http://http", "http", 1234, "/before");
    row("question mark is no path", "http://host?x=1", "host?x=1", 1234, "/before");
    row("user name stays in the host", "http://me@host", "me@host", 1234, "/before");
    row("bytes outside ASCII", "http://\xE4\xB8\xAD\xE6\x96\x87", "\xE4\xB8\xAD\xE6\x96\x87", 1234,
        "/before");

    row("path", "http://192.168.1.120/cgi-bin/a.cgi", "192.168.1.120", 1234, "/cgi-bin/a.cgi");
    row("path of a slash", "http://host/", "host", 1234, "/");
    row("path with query", "http://host/p?-end=12&-x", "host", 1234, "/p?-end=12&-x");
    row("path with fragment", "http://host/p#f", "host", 1234, "/p#f");
    row("path with spaces", "http://host/a b", "host", 1234, "/a b");
    row("path with further slashes", "http://host//a//", "host", 1234, "//a//");
    row("no host before the path", "http:///p", "", 1234, "/p");
    row("path outside ASCII", "http://host/\xFF\x80", "host", 1234, "/\xFF\x80");

    row("port", "http://host:8080", "host", 8080, "/before");
    row("no digits after the colon", "http://host:", "host", 0, "/before");
    row("letters after the colon", "http://host:abc", "host", 0, "/before");
    row("digits up to a letter", "http://host:80a", "host", 80, "/before");
    row("digits after spaces", "http://host: 81", "host", 81, "/before");
    row("plus sign", "http://host:+82", "host", 82, "/before");
    row("minus sign", "http://host:-1", "host", -1, "/before");
    row("leading zeros are no octal", "http://host:0010", "host", 10, "/before");
    row("port beyond 16 bits is kept", "http://host:70000", "host", 70000, "/before");
    row("second colon ends the digits", "http://host:1:2", "host", 1, "/before");
    row("no host before the port", "http://:9", "", 9, "/before");

    row("port, path and query", "http://host:8080/x?y=1", "host", 8080, "/x?y=1");
    row("no digits before the path", "http://host:/p", "host", 0, "/p");
    row("letters before the path", "http://host:x/p", "host", 0, "/p");
    row("second colon in the path", "http://host:81/p:2", "host", 81, "/p:2");
    row("second colon before the path", "http://host:81:5/p", "host", 81, "/p");
    row("prefix in the path", "http://host:81/http://b/c", "host", 81, "/http://b/c");
}

void HTTPClient_UrlTest::addressIsSplit()
{
    QFETCH(QByteArray, url);
    HTTPRequest request = usedRequest(url);
    QVERIFY(HTTPClient().parseUrl(request));
    QTEST(QByteArray::fromStdString(request.host), "host");
    QTEST(request.port, "port");
    QTEST(QByteArray::fromStdString(request.path), "path");
}

void HTTPClient_UrlTest::addressIsRefusedAndNothingIsWritten_data()
{
    const support::Rows<QByteArray> row("url");

    row("empty", "");
    row("prefix alone", "http://");
    row("one character short of the prefix", "http:/");
    row("seven other characters", "abcdefg");
    row("host without scheme", "192.168.1.120/cgi-bin");
    row("secure scheme", "https://host/p");
    row("scheme in capitals", "HTTP://host/p");
    row("one capital", "httP://host/p");
    row("prefix not at the start", " http://host/p");
    row("prefix in the middle", "xyz http://host/p");
    row("other scheme", "rtsp://host/p");
    row("one slash", "http:/host/path");
    row("colon in the query", "http://host/x?t=1:2");
    row("colon in the path", "http://host/a:b");
    row("colon right after the slash", "http://host/:");
    row("colon in a path without host", "http:///:80");
}

void HTTPClient_UrlTest::addressIsRefusedAndNothingIsWritten()
{
    QFETCH(QByteArray, url);
    HTTPRequest request = usedRequest(url);
    QVERIFY(!HTTPClient().parseUrl(request));
    QCOMPARE(request.host, std::string("before"));
    QCOMPARE(request.port, 1234);
    QCOMPARE(request.path, std::string("/before"));
}

void HTTPClient_UrlTest::nothingIsResetToItsDefaultBetweenAddresses()
{
    HTTPClient client;
    HTTPRequest request;
    request.url = "http://one:8080/first";
    QVERIFY(client.parseUrl(request));
    request.url = "http://two";
    QVERIFY(client.parseUrl(request));
    QCOMPARE(request.host, std::string("two"));
    QCOMPARE(request.port, 8080);
    QCOMPARE(request.path, std::string("/first"));
}

void HTTPClient_UrlTest::addressItselfAndHeadersStayAsTheyWere()
{
    HTTPRequest request;
    request.url = "http://host:81/p";
    QVERIFY(HTTPClient().parseUrl(request));
    QCOMPARE(request.url, std::string("http://host:81/p"));
    QCOMPARE(request.version, std::string("HTTP/1.1"));
    QVERIFY(request.headers == HTTPRequest().headers);
}

BELUN_TEST(HTTPClient_UrlTest)
#include "HTTPClient_UrlTest.moc"
