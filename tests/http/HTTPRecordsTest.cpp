#include "http/HTTPRecords.h"

#include "http/HTTPClient.h"
#include "tests/kit/TestMain.h"

#include <type_traits>

#include <QObject>
#include <QTest>

class HTTPRecordsTest : public QObject
{
    Q_OBJECT

private slots:
    void methodsCountFromOneInThirtyTwoBits();
    void clientHoldsNoData();
    void newRequestFetchesTheRootOverPort80();
    void requestFieldsAreInOrder();
    void newRequestCarriesFourHeaders();
    void headerNamesAreOrderedByPlainByteValue();
    void newResponseIsEmpty();
    void lengthsOfAResponseAreUnsignedAndChunkLeftIsSigned();
    void newMultipartIsEmpty();
    void multipartPartsAreOrderedByTheirKey();
};

void HTTPRecordsTest::methodsCountFromOneInThirtyTwoBits()
{
    QCOMPARE(int(HTTP_REQ_GET), 1);
    QCOMPARE(int(HTTP_REQ_POST), 2);
    QCOMPARE(int(HTTP_REQ_PUT), 3);
    QCOMPARE(int(HTTP_REQ_DELETE), 4);
    QVERIFY((std::is_same_v<std::underlying_type_t<HTTP_REQ_TYPE>, int>));
    QCOMPARE(sizeof(HTTP_REQ_TYPE), std::size_t(4));
}

void HTTPRecordsTest::clientHoldsNoData()
{
    QVERIFY(std::is_empty_v<HTTPClient>);
    QVERIFY(std::is_default_constructible_v<HTTPClient>);
}

void HTTPRecordsTest::newRequestFetchesTheRootOverPort80()
{
    const HTTPRequest request;
    QCOMPARE(request.version, std::string("HTTP/1.1"));
    QCOMPARE(request.url, std::string());
    QCOMPARE(request.host, std::string());
    QCOMPARE(request.port, 80);
    QCOMPARE(request.path, std::string("/"));
}

void HTTPRecordsTest::requestFieldsAreInOrder()
{
    const HTTPRequest request{"version", "url", "host", 1234, "path", {{"name", "value"}}};
    const auto& [version, url, host, port, path, headers] = request;
    QCOMPARE(version, std::string("version"));
    QCOMPARE(url, std::string("url"));
    QCOMPARE(host, std::string("host"));
    QCOMPARE(port, 1234);
    QCOMPARE(path, std::string("path"));
    QCOMPARE(headers.at("name"), std::string("value"));
}

void HTTPRecordsTest::newRequestCarriesFourHeaders()
{
    const HTTPHeaders expected = {{"Accept", "*/*"},
                                  {"Accept-Language", "zh-CN"},
                                  {"Connection", "Keep-Alive"},
                                  {"User-Agent", "SDK C++ http client"}};
    QVERIFY(HTTPRequest().headers == expected);
}

void HTTPRecordsTest::headerNamesAreOrderedByPlainByteValue()
{
    const HTTPHeaders headers = {{"a", ""}, {"\xC3\x84", ""}, {"B", ""}, {"", ""}, {"-", ""}};
    std::string order;
    for (const auto& header : headers) {
        order += header.first + ";";
    }
    QCOMPARE(order, std::string(";-;B;a;\xC3\x84;"));
}

void HTTPRecordsTest::newResponseIsEmpty()
{
    const HTTPResponse response;
    const auto& [statusCode, chunked, lastChunkSeen, contentLength, received, chunkLeft, headers] =
        response;
    QCOMPARE(statusCode, 0);
    QCOMPARE(chunked, false);
    QCOMPARE(lastChunkSeen, false);
    QCOMPARE(contentLength, 0u);
    QCOMPARE(received, 0u);
    QCOMPARE(chunkLeft, 0);
    QVERIFY(headers.empty());
}

void HTTPRecordsTest::lengthsOfAResponseAreUnsignedAndChunkLeftIsSigned()
{
    QVERIFY((std::is_same_v<decltype(HTTPResponse::contentLength), std::uint32_t>));
    QVERIFY((std::is_same_v<decltype(HTTPResponse::received), std::uint32_t>));
    QVERIFY((std::is_same_v<decltype(HTTPResponse::chunkLeft), std::int32_t>));
    QVERIFY((std::is_same_v<decltype(HTTPResponse::statusCode), std::int32_t>));
}

void HTTPRecordsTest::newMultipartIsEmpty()
{
    const HTTPMultipart multipart;
    const auto& [boundary, parts] = multipart;
    QCOMPARE(boundary, std::string());
    QVERIFY(parts.empty());
    const HTTPMultipartPart part;
    const auto& [headers, content] = part;
    QVERIFY(headers.empty());
    QCOMPARE(content, std::string());
}

void HTTPRecordsTest::multipartPartsAreOrderedByTheirKey()
{
    HTTPMultipart multipart;
    multipart.parts[10].content = "ten";
    multipart.parts[-1].content = "minus one";
    multipart.parts[2].content = "two";
    std::string order;
    for (const auto& part : multipart.parts) {
        order += part.second.content + ";";
    }
    QCOMPARE(order, std::string("minus one;two;ten;"));
}

BELUN_TEST(HTTPRecordsTest)
#include "HTTPRecordsTest.moc"
