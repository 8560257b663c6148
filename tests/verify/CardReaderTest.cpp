// The exact requests, and what is read from the answers.
#include "verify/CardReader.h"

#include "tests/kit/Rows.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/TestMain.h"

using support::Peer;
using support::ScriptedServer;
using verify::Camera;
using verify::CardReader;
using verify::Trouble;

namespace {

const QByteArray commandHead = " HTTP/1.1\r\n"
                               "Host: 192.168.1.120\r\n"
                               "Accept: */*\r\n"
                               "Accept-Language: zh-CN\r\n"
                               "Connection: Keep-Alive\r\n"
                               "User-Agent: SDK C++ http client\r\n\r\n";

QByteArray answer(const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
           body;
}

/// A camera that answers every request with the same bytes.
class OneAnswer
{
public:
    explicit OneAnswer(const QByteArray& bytes)
        : server([bytes](Peer& peer) {
              peer.receiveUntil("\r\n\r\n");
              peer.send(bytes);
              peer.close();
          }),
          camera(server.address(), server.port(), std::chrono::seconds(5)), reader(camera)
    {
    }

    ScriptedServer server;
    Camera camera;
    CardReader reader;
};

} // namespace

class CardReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void countIsThatOfTheFirstMarkers_data();
    void countIsThatOfTheFirstMarkers();
    void namesAreThoseOfTheirOwnEntries_data();
    void namesAreThoseOfTheirOwnEntries();
    void sizeIsExact_data();
    void sizeIsExact();
    void commandsGoOutAsTheWindowSendsThem();
    void contentIsAskedForAsADownloadDoes();
    void contentOfAnotherLengthIsNotRead();
    void answersThatAreNotUnderstoodAreErrors();
};

void CardReaderTest::countIsThatOfTheFirstMarkers_data()
{
    // An empty text means that no count is found.
    const support::Rows<QByteArray, QByteArray> row("answer", "text");
    row("ordinary", "var count=\"12\";\r\n", "12");
    row("zero", "var count=\"0\";", "0");
    row("leading zeros", "=\"007\";", "007");
    row("two", "a=\"3\";b=\"4\";", "3");
    row("no markers", "12\r\n", "");
    row("no end", "count=\"12", "");
    row("empty", "count=\"\";", "");
    row("negative", "count=\"-1\";", "");
    row("letters", "count=\"12x\";", "");
    row("beyond 64 bits", "count=\"" + QByteArray(30, '9') + "\";", "");
    row("after a zero byte", QByteArray("\0count=\"1\";", 11), "");
}

void CardReaderTest::countIsThatOfTheFirstMarkers()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, text);
    const auto count = verify::readCount(answer.toStdString());
    QCOMPARE(count.has_value(), !text.isEmpty());
    if (count) {
        QCOMPARE(QByteArray::fromStdString(count->text), text);
        QCOMPARE(quint64(count->number), quint64(text.toULongLong()));
    }
}

void CardReaderTest::namesAreThoseOfTheirOwnEntries_data()
{
    // The names are separated by bars; "none" if the list is rejected.
    const support::Rows<QByteArray, QByteArray> row("list", "names");
    row("three", "sd/100ZEPNA/A;sd/100ZEPNA/B;sd/100ZEPNA/C;\r\n", "A|B|C");
    row("empty card", "\r\n", "");
    row("text after the end", "ZEPNA/A;\rZEPNA/B;\r", "A");
    row("entry without a folder", "x;ZEPNA/A;\r", "|A");
    row("empty name", "ZEPNA/;ZEPNA/A;\r", "|A");
    row("empty entry", ";ZEPNA/A;\r", "|A");
    row("only an empty entry", ";\r", "");
    row("folder twice", "ZEPNA/ZEPNA/A;\r", "ZEPNA/A");
    row("return inside a name", "ZEPNA/A\rB;\r", "A\rB");
    row("twice the same", "ZEPNA/A;ZEPNA/A;\r", "A|A");
    row("no end", "ZEPNA/A;", "none");
    row("cut in an entry", "ZEPNA/A;ZEPNA/B", "none");
    row("nothing", "", "none");
    row("zero byte", QByteArray("ZEPNA/A;\0\r", 10), "none");
    row("line feed instead of the end", "ZEPNA/A;\n", "none");
}

void CardReaderTest::namesAreThoseOfTheirOwnEntries()
{
    QFETCH(QByteArray, list);
    const auto names = verify::readNames(list.toStdString());
    QByteArrayList found;
    for (const std::string& name : names.value_or(std::vector<std::string>{"none"})) {
        found << QByteArray::fromStdString(name);
    }
    QTEST(found.join('|'), "names");
}

void CardReaderTest::sizeIsExact_data()
{
    const support::Rows<QByteArray, QString> row("details", "size");
    row("ordinary", "create=\"1\";size=\"1572864\";time=\"3\";", "1572864");
    row("beyond 32 bits", "size=\"4294967297\";", "4294967297");
    row("none", "create=\"20200131124502\";", "unknown");
    row("negative", "size=\"-1\";", "unknown");
    row("minus nothing", "size=\"-0\";", "unknown");
    row("letters", "size=\"1k\";", "unknown");
    row("empty", "size=\"\";", "unknown");
}

void CardReaderTest::sizeIsExact()
{
    QFETCH(QByteArray, details);
    const auto found = verify::readSize(details.toStdString());
    QTEST(found ? QString::number(*found) : QString("unknown"), "size");
}

void CardReaderTest::commandsGoOutAsTheWindowSendsThem()
{
    OneAnswer count(answer("var count=\"2\";\r\n"));
    QCOMPARE(quint64(count.reader.count().value.number), quint64(2));
    QCOMPARE(count.server.received(0), "GET /cgi-bin/hi3510/getfilecount.cgi?" + commandHead);

    OneAnswer list(answer("ZEPNA/A;\r\n"));
    QCOMPARE(list.reader.names("02").value, (std::vector<std::string>{"A"}));
    QCOMPARE(list.server.received(0),
             "GET /cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=02" + commandHead);

    OneAnswer details(answer("size=\"7\";"));
    QCOMPARE(quint64(details.reader.size("a b&c:d#%41.MP4").value), quint64(7));
    QCOMPARE(details.server.received(0),
             "GET /cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/a b&c:d#%41.MP4" +
                 commandHead);
    for (const OneAnswer* each : {&count, &list, &details}) {
        QCOMPARE(each->server.connectionCount(), 1);
    }
}

void CardReaderTest::contentIsAskedForAsADownloadDoes()
{
    OneAnswer camera(answer("hello"));
    std::string body;
    const auto reply = camera.reader.content("a b.MP4", 5, [&body](std::string_view bytes) {
        body.append(bytes);
        return true;
    });
    QVERIFY(!reply.error);
    QVERIFY(!reply.value);
    QCOMPARE(body, std::string("hello"));
    QCOMPARE(camera.server.received(0),
             QByteArray(
                 "GET http://192.168.1.120/sd/DCIM/100ZEPNA/a b.MP4 HTTP/1.1\r\n"
                 "Accept:text/html,application/xhtml+xml,application/xml;q=0.9,image/webp,*/*;q=0.8"
                 "\r\n"
                 "User-Agent:Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/537(KHTML, like Gecko) "
                 "Chrome/47.0.2526Safari/537.36\r\n"
                 "Host:192.168.1.120\r\nConnection:close\r\n\r\n"));
}

void CardReaderTest::contentOfAnotherLengthIsNotRead()
{
    OneAnswer camera(answer("hello"));
    bool called = false;
    const auto reply = camera.reader.content("A", 4, [&called](std::string_view) {
        called = true;
        return true;
    });
    QVERIFY(!reply.error);
    QCOMPARE(quint64(reply.value.value_or(0)), quint64(5));
    QVERIFY(!called);
}

void CardReaderTest::answersThatAreNotUnderstoodAreErrors()
{
    OneAnswer camera(answer("<html>"));
    QCOMPARE(camera.reader.count().error.trouble, Trouble::NotUnderstood);
    QCOMPARE(camera.reader.names("1").error.trouble, Trouble::NotUnderstood);
    QCOMPARE(camera.reader.size("A").error.trouble, Trouble::NotUnderstood);

    OneAnswer refusing("HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n");
    const auto count = refusing.reader.count();
    QCOMPARE(count.error.trouble, Trouble::Status);
    QCOMPARE(count.error.status, 503);

    OneAnswer longCount(answer("=\"" + QByteArray(4096, '0') + "\";"));
    QCOMPARE(longCount.reader.count().error.trouble, Trouble::TooLong);
}

BELUN_TEST(CardReaderTest)

#include "CardReaderTest.moc"
