#include "download/ResponseHead.h"

#include "tests/download/CameraPlay.h"
#include "tests/kit/TestMain.h"

namespace {

/// Passes the bytes to a head one by one until the head is complete. Returns how many bytes were
/// passed, or -1 if the head is still incomplete after all bytes. Sets `text` to the head's text.
int readHead(const QByteArray& bytes, QByteArray& text)
{
    download::ResponseHead head;
    int taken = 0;
    bool complete = false;
    while (!complete && taken < bytes.size()) {
        complete = head.add(bytes.at(taken++));
    }
    text = head.text();
    return complete ? taken : -1;
}

} // namespace

class ResponseHeadTest : public QObject
{
    Q_OBJECT

private slots:
    void headEndsWithFourLineEndCharacters_data();
    void headEndsWithFourLineEndCharacters();
    void longHeadIsKeptWhole();
    void fieldIsTheWordAfterItsName_data();
    void fieldIsTheWordAfterItsName();
    void fieldsThatAreMissingStayZero();
};

void ResponseHeadTest::headEndsWithFourLineEndCharacters_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("taken");
    QTest::addColumn<QByteArray>("text");
    const auto ends = [](const char* title, const QByteArray& head) {
        QTest::newRow(title) << head + "\nbody" << static_cast<int>(head.size()) << head;
    };
    ends("CR LF CR LF", "HTTP/1.1 200 OK\r\nA: b\r\n\r\n");
    ends("LF LF CR LF", "HTTP/1.1 200 OK\r\nA: b\n\n\r\n");
    ends("LF LF LF LF", "HTTP/1.1 200 OK\r\nA: b\n\n\n\n");
    ends("CR CR CR CR", "HTTP/1.1 200 OK\r\nA: b\r\r\r\r");
    ends("LF CR LF CR", "HTTP/1.1 200 OK\r\nA: b\n\r\n\r");
    ends("nothing but CR LF CR LF", "\r\n\r\n");
    const auto goesOn = [](const char* title, const QByteArray& text) {
        QTest::newRow(title) << text << -1 << text;
    };
    goesOn("two line feeds", "HTTP/1.1 200 OK\n\nbody");
    goesOn("CR LF CR", "HTTP/1.1 200 OK\r\n\rbody");
    goesOn("CR LF, a space, CR LF", "A\r\n \r\nB");
    goesOn("nothing but three line feeds", "\n\n\n");
    goesOn("no bytes", "");
    QTest::newRow("zero bytes are left out")
        << QByteArray("A\0: b\r\n\0\r\0\nbody", 15) << 11 << QByteArray("A: b\r\n\r\n");
}

void ResponseHeadTest::headEndsWithFourLineEndCharacters()
{
    QFETCH(QByteArray, bytes);
    QByteArray head;
    const int taken = readHead(bytes, head);
    QTEST(taken, "taken");
    QTEST(head, "text");
}

void ResponseHeadTest::longHeadIsKeptWhole()
{
    const QByteArray text = "A: " + QByteArray(1000000, 'x') + "\r\n\r\n";
    QByteArray head;
    QCOMPARE(readHead(text, head), 1000007);
    QVERIFY(head == text);
}

void ResponseHeadTest::fieldIsTheWordAfterItsName_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("fields");
    const auto row = [](const char* title, const QByteArray& head, const QByteArray& fields) {
        QTest::newRow(title) << head << fields;
    };
    row("whole head",
        "HTTP/1.1 200 OK\r\nServer: camera\r\nContent-Type: video/mp4\r\n"
        "Content-Length: 1048576\r\nConnection: close\r\n\r\n",
        "status=200 type=video/mp4 length=1048576");

    row("status, older version", "HTTP/1.0 404 Not Found\r\n", "status=404");
    row("status, no version", "HTTP/ 206\r\n", "status=206");
    row("status line not at the start", "garbage HTTP/1.1 500\r\n", "status=500");
    row("status on the next line", "HTTP/1.1\r\n 301\r\n", "status=301");
    row("first status of two", "HTTP/1.1 100\r\nHTTP/1.1 200\r\n", "status=100");
    row("status in lower case", "http/1.1 200 OK\r\n", "");
    row("status without a number", "HTTP/1.1 OK\r\n", "");
    row("ends after the protocol", "HTTP/1.1", "");

    row("type, first word only", "Content-Type: text/html; charset=utf-8\r\n", "type=text/html;");
    row("type without a space", "Content-Type:video/mp4\r\nNext: 1\r\n", "type=Next:");
    row("type outside ASCII", "Content-Type: \xE6\xB5\xB7\r\n", "type=\\xE6\\xB5\\xB7");
    row("type in lower case", "content-type: video/mp4\r\n", "");
    row("type of spaces", "Content-Type:  \t ", "");
    row("ends after the type's name", "Content-Type:", "");
    row("type of 126 characters", "Content-Type: " + QByteArray(126, 't') + "\r\n",
        "type=\\(126 t)");
    row("type of 127 characters", "Content-Type: " + QByteArray(127, 't') + "\r\n",
        "type=\\(127 t)");
    row("type of 128 characters", "Content-Type: " + QByteArray(128, 't') + "\r\n",
        "type=\\(127 t)");
    row("type of 200 characters, then a length",
        "Content-Type: " + QByteArray(200, 't') + "\r\nContent-Length: 5\r\n",
        "type=\\(127 t) length=5");

    row("length of more than 32 bits", "Content-Length: 5000000000\r\n", "length=5000000000");
    row("length after a tab", "Content-Length:\t9\r\n", "length=9");
    row("length without a space", "Content-Length:5\r\nA: 1\r\n", "");
    row("length without a space, a number next", "Content-Length:5\r\n7 \r\n", "length=7");
    row("length inside another name", "X-Content-Length: 8\r\n", "length=8");
    row("first length of two", "Content-Length: 1\r\nContent-Length: 2\r\n", "length=1");
    row("length in lower case", "content-length: 5\r\n", "");
    row("negative length", "Content-Length: -5\r\n", "length=-5");
    row("length without a number", "Content-Length: many\r\n", "");
    row("ends after the length's name", "Content-Length: ", "");
}

void ResponseHeadTest::fieldIsTheWordAfterItsName()
{
    QFETCH(QByteArray, head);
    const resp_header header = download::parseHead(head);
    QTEST(describe(header), "fields");
    QCOMPARE(QByteArray(header.file_name, 256), QByteArray(256, '\0'));
}

void ResponseHeadTest::fieldsThatAreMissingStayZero()
{
    const resp_header header = download::parseHead("");
    QCOMPARE(describe(header), QByteArray());
    QCOMPARE(QByteArray(header.content_type, 128), QByteArray(128, '\0'));
}

BELUN_TEST(ResponseHeadTest)
#include "ResponseHeadTest.moc"
