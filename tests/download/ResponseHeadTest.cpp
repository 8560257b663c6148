#include "download/ResponseHead.h"

#include "tests/kit/TestMain.h"

namespace {

struct Read
{
    bool complete;
    int taken; // the number of bytes up to the end of the head
    QByteArray text;
};

/// Passes the bytes to a head one by one until it is complete.
Read readHead(const QByteArray& bytes)
{
    download::ResponseHead head;
    for (int number = 0; number < bytes.size(); ++number) {
        if (head.add(bytes.at(number))) {
            return {true, number + 1, head.text()};
        }
    }
    return {false, static_cast<int>(bytes.size()), head.text()};
}

} // namespace

class ResponseHeadTest : public QObject
{
    Q_OBJECT

private slots:
    void headEndsWithFourLineEndCharacters_data();
    void headEndsWithFourLineEndCharacters();
    void headGoesOnWithoutFour_data();
    void headGoesOnWithoutFour();
    void emptyHeadIsAnEmptyText();
    void zeroBytesAreLeftOut();
    void longHeadIsKeptWhole();
    void statusIsTheWordAfterTheProtocol_data();
    void statusIsTheWordAfterTheProtocol();
    void typeIsOneWordOfAtMost127Characters_data();
    void typeIsOneWordOfAtMost127Characters();
    void lengthIsTheWordAfterItsName_data();
    void lengthIsTheWordAfterItsName();
    void fieldsThatAreMissingStayZero();
    void wholeHeadIsRead();
};

void ResponseHeadTest::headEndsWithFourLineEndCharacters_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("CR LF CR LF") << QByteArray("\r\n\r\n");
    QTest::newRow("LF LF CR LF") << QByteArray("\n\n\r\n");
    QTest::newRow("LF LF LF LF") << QByteArray("\n\n\n\n");
    QTest::newRow("CR CR CR CR") << QByteArray("\r\r\r\r");
    QTest::newRow("LF CR LF CR") << QByteArray("\n\r\n\r");
}

void ResponseHeadTest::headEndsWithFourLineEndCharacters()
{
    QFETCH(QByteArray, end);
    const Read read = readHead("HTTP/1.1 200 OK\r\nA: b" + end + "\nbody");
    QVERIFY(read.complete);
    QCOMPARE(read.taken, 25);
    QCOMPARE(read.text, "HTTP/1.1 200 OK\r\nA: b" + end);
}

void ResponseHeadTest::headGoesOnWithoutFour_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("two line feeds") << QByteArray("HTTP/1.1 200 OK\n\nbody");
    QTest::newRow("three") << QByteArray("HTTP/1.1 200 OK\r\n\rbody");
    QTest::newRow("four, but not in a row") << QByteArray("A\r\n \r\nB");
    QTest::newRow("nothing but three") << QByteArray("\n\n\n");
}

void ResponseHeadTest::headGoesOnWithoutFour()
{
    QFETCH(QByteArray, text);
    const Read read = readHead(text);
    QVERIFY(!read.complete);
    QCOMPARE(read.text, text);
}

void ResponseHeadTest::emptyHeadIsAnEmptyText()
{
    QCOMPARE(readHead("").text, QByteArray(""));
    const Read read = readHead("\r\n\r\nbody");
    QVERIFY(read.complete);
    QCOMPARE(read.taken, 4);
}

void ResponseHeadTest::zeroBytesAreLeftOut()
{
    const Read read = readHead(QByteArray("A\0: b\r\n\0\r\0\nbody", 15));
    QVERIFY(read.complete);
    QCOMPARE(read.taken, 11);
    QCOMPARE(read.text, QByteArray("A: b\r\n\r\n"));
}

void ResponseHeadTest::longHeadIsKeptWhole()
{
    const QByteArray text = "A: " + QByteArray(1000000, 'x') + "\r\n\r\n";
    const Read read = readHead(text);
    QVERIFY(read.complete);
    QVERIFY(read.text == text);
}

void ResponseHeadTest::statusIsTheWordAfterTheProtocol_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<int>("status");
    QTest::newRow("ok") << QByteArray("HTTP/1.1 200 OK\r\n") << 200;
    QTest::newRow("older version") << QByteArray("HTTP/1.0 404 Not Found\r\n") << 404;
    QTest::newRow("no version") << QByteArray("HTTP/ 206\r\n") << 206;
    QTest::newRow("not in front") << QByteArray("garbage HTTP/1.1 500\r\n") << 500;
    QTest::newRow("on the next line") << QByteArray("HTTP/1.1\r\n 301\r\n") << 301;
    QTest::newRow("first of two") << QByteArray("HTTP/1.1 100\r\nHTTP/1.1 200\r\n") << 100;
    QTest::newRow("small letters") << QByteArray("http/1.1 200 OK\r\n") << 0;
    QTest::newRow("no number") << QByteArray("HTTP/1.1 OK\r\n") << 0;
    QTest::newRow("ends after the protocol") << QByteArray("HTTP/1.1") << 0;
}

void ResponseHeadTest::statusIsTheWordAfterTheProtocol()
{
    QFETCH(QByteArray, head);
    QFETCH(int, status);
    QCOMPARE(int{download::parseHead(head).status_code}, status);
}

void ResponseHeadTest::typeIsOneWordOfAtMost127Characters_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("ordinary") << QByteArray("Content-Type: video/mp4\r\n")
                              << QByteArray("video/mp4");
    QTest::newRow("first word only")
        << QByteArray("Content-Type: text/html; charset=utf-8\r\n") << QByteArray("text/html;");
    QTest::newRow("no space") << QByteArray("Content-Type:video/mp4\r\nNext: 1\r\n")
                              << QByteArray("Next:");
    QTest::newRow("small letters") << QByteArray("content-type: video/mp4\r\n") << QByteArray("");
    QTest::newRow("only spaces after it") << QByteArray("Content-Type:  \t ") << QByteArray("");
    QTest::newRow("nothing after it") << QByteArray("Content-Type:") << QByteArray("");
    QTest::newRow("126 characters") << "Content-Type: " + QByteArray(126, 't') + "\r\n"
                                    << QByteArray(126, 't');
    QTest::newRow("127 characters") << "Content-Type: " + QByteArray(127, 't') + "\r\n"
                                    << QByteArray(127, 't');
    QTest::newRow("128 characters") << "Content-Type: " + QByteArray(128, 't') + "\r\n"
                                    << QByteArray(127, 't');
    QTest::newRow("200 characters") << "Content-Type: " + QByteArray(200, 't') + "\r\n"
                                    << QByteArray(127, 't');
}

void ResponseHeadTest::typeIsOneWordOfAtMost127Characters()
{
    QFETCH(QByteArray, head);
    QFETCH(QByteArray, type);
    const resp_header header = download::parseHead("Content-Length: 5\r\n" + head);
    QCOMPARE(QByteArray(header.content_type), type);
    QCOMPARE(header.content_length, qint64{5});
    QCOMPARE(QByteArray(header.file_name), QByteArray(""));
}

void ResponseHeadTest::lengthIsTheWordAfterItsName_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<qint64>("length");
    QTest::newRow("ordinary") << QByteArray("Content-Length: 123\r\n") << qint64{123};
    QTest::newRow("more than 32 bits")
        << QByteArray("Content-Length: 5000000000\r\n") << qint64{5000000000};
    QTest::newRow("tab") << QByteArray("Content-Length:\t9\r\n") << qint64{9};
    QTest::newRow("no space") << QByteArray("Content-Length:5\r\nA: 1\r\n") << qint64{0};
    QTest::newRow("no space, a number next")
        << QByteArray("Content-Length:5\r\n7 \r\n") << qint64{7};
    QTest::newRow("inside another name") << QByteArray("X-Content-Length: 8\r\n") << qint64{8};
    QTest::newRow("first of two") << QByteArray("Content-Length: 1\r\nContent-Length: 2\r\n")
                                  << qint64{1};
    QTest::newRow("small letters") << QByteArray("content-length: 5\r\n") << qint64{0};
    QTest::newRow("negative") << QByteArray("Content-Length: -5\r\n") << qint64{-5};
    QTest::newRow("no number") << QByteArray("Content-Length: many\r\n") << qint64{0};
    QTest::newRow("ends after its name") << QByteArray("Content-Length: ") << qint64{0};
}

void ResponseHeadTest::lengthIsTheWordAfterItsName()
{
    QFETCH(QByteArray, head);
    QFETCH(qint64, length);
    QCOMPARE(qint64{download::parseHead(head).content_length}, length);
}

void ResponseHeadTest::fieldsThatAreMissingStayZero()
{
    const resp_header header = download::parseHead("");
    QCOMPARE(int{header.status_code}, 0);
    QCOMPARE(QByteArray(header.content_type, 128), QByteArray(128, '\0'));
    QCOMPARE(qint64{header.content_length}, qint64{0});
    QCOMPARE(QByteArray(header.file_name, 256), QByteArray(256, '\0'));
}

void ResponseHeadTest::wholeHeadIsRead()
{
    const resp_header header =
        download::parseHead("HTTP/1.1 200 OK\r\nServer: camera\r\nContent-Type: video/mp4\r\n"
                            "Content-Length: 1048576\r\nConnection: close\r\n\r\n");
    QCOMPARE(int{header.status_code}, 200);
    QCOMPARE(QByteArray(header.content_type), QByteArray("video/mp4"));
    QCOMPARE(qint64{header.content_length}, qint64{1048576});
    QCOMPARE(QByteArray(header.file_name, 256), QByteArray(256, '\0'));
}

BELUN_TEST(ResponseHeadTest)
#include "ResponseHeadTest.moc"
