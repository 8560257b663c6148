#include "http/HTTPClient.h"

#include "tests/kit/TestMain.h"

#include <QObject>
#include <QTest>

class HTTPClient_MultipartTest : public QObject
{
    Q_OBJECT

private slots:
    void noPartsGiveTheClosingLineOnly();
    void onePartWithoutHeaders();
    void twoPartsAreLaidOutByteForByte();
    void partsComeInKeyOrderAndHeadersInNameOrder();
    void emptyPartStillHasItsLines();
    void contentIsWrittenAsItIs();
    void bodyIsAppended();
    void recordIsLeftAsItWas();
    void bodyMayBeAppendedToATextOfTheRecord();
};

static std::string bodyOf(HTTPMultipart multipart)
{
    std::string body;
    HTTPClient().makeMultipartBody(multipart, body);
    return body;
}

void HTTPClient_MultipartTest::noPartsGiveTheClosingLineOnly()
{
    QCOMPARE(bodyOf({"b", {}}), std::string("\r\n--b--\r\n"));
    QCOMPARE(bodyOf({"", {}}), std::string("\r\n----\r\n"));
}

void HTTPClient_MultipartTest::onePartWithoutHeaders()
{
    QCOMPARE(bodyOf({"b", {{0, {{}, "text"}}}}), std::string("--b\r\n\r\ntext\r\n--b--\r\n"));
}

void HTTPClient_MultipartTest::twoPartsAreLaidOutByteForByte()
{
    const HTTPMultipart multipart{"b", {{1, {{{"N", "V"}}, "1"}}, {2, {{}, "2"}}}};
    QCOMPARE(bodyOf(multipart), std::string("--b\r\nN: V\r\n\r\n1\r\n--b\r\n\r\n2\r\n--b--\r\n"));
}

void HTTPClient_MultipartTest::partsComeInKeyOrderAndHeadersInNameOrder()
{
    HTTPMultipart multipart;
    multipart.boundary = "frontier";
    multipart.parts[7] = {{{"b", "2"}, {"a", "3"}, {"B", "1"}}, "last"};
    multipart.parts[-7] = {{}, "first"};
    multipart.parts[0] = {{{"Z", ""}}, "middle"};
    QCOMPARE(bodyOf(multipart), std::string("--frontier\r\n\r\nfirst"
                                            "\r\n--frontier\r\nZ: \r\n\r\nmiddle"
                                            "\r\n--frontier\r\nB: 1\r\na: 3\r\nb: 2\r\n\r\nlast"
                                            "\r\n--frontier--\r\n"));
}

void HTTPClient_MultipartTest::emptyPartStillHasItsLines()
{
    QCOMPARE(bodyOf({"b", {{1, {}}, {2, {}}}}),
             std::string("--b\r\n\r\n\r\n--b\r\n\r\n\r\n--b--\r\n"));
}

void HTTPClient_MultipartTest::contentIsWrittenAsItIs()
{
    const std::string content("\0\x01\xFF--b\r\n\r\n", 10);
    QCOMPARE(bodyOf({"b", {{1, {{}, content}}}}),
             std::string("--b\r\n\r\n\0\x01\xFF--b\r\n\r\n\r\n--b--\r\n", 26));
}

void HTTPClient_MultipartTest::bodyIsAppended()
{
    HTTPMultipart multipart{"b", {}};
    std::string out = "before";
    HTTPClient().makeMultipartBody(multipart, out);
    HTTPClient().makeMultipartBody(multipart, out);
    QCOMPARE(out, std::string("before\r\n--b--\r\n\r\n--b--\r\n"));
}

void HTTPClient_MultipartTest::recordIsLeftAsItWas()
{
    HTTPMultipart multipart{"b", {{1, {{{"N", "V"}}, "1"}}}};
    std::string out;
    HTTPClient().makeMultipartBody(multipart, out);
    QCOMPARE(multipart.boundary, std::string("b"));
    QCOMPARE(multipart.parts.size(), std::size_t(1));
    QCOMPARE(multipart.parts[1].headers["N"], std::string("V"));
    QCOMPARE(multipart.parts[1].content, std::string("1"));
}

void HTTPClient_MultipartTest::bodyMayBeAppendedToATextOfTheRecord()
{
    const HTTPMultipart fresh{"b", {{1, {{{"N", "V"}}, "1"}}, {2, {{}, "2"}}}};
    const std::string body = "--b\r\nN: V\r\n\r\n1\r\n--b\r\n\r\n2\r\n--b--\r\n";
    HTTPMultipart multipart = fresh;
    HTTPClient().makeMultipartBody(multipart, multipart.boundary);
    QCOMPARE(multipart.boundary, "b" + body);
    multipart = fresh;
    HTTPClient().makeMultipartBody(multipart, multipart.parts[1].content);
    QCOMPARE(multipart.parts[1].content, "1" + body);
    multipart = fresh;
    HTTPClient().makeMultipartBody(multipart, multipart.parts[1].headers["N"]);
    QCOMPARE(multipart.parts[1].headers["N"], "V" + body);
}

BELUN_TEST(HTTPClient_MultipartTest)
#include "HTTPClient_MultipartTest.moc"
