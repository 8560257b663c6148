// parseLine, and cases that the conversation files cannot express: long lines, sizes of receives,
// memory.
#include "http/HTTPClient.h"

#include "tests/http/PairedSession.h"
#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <exception>
#include <fstream>
#include <functional>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTest>

namespace {

/// Limits the memory of this process to `more` bytes beyond its present size. RLIMIT_AS also counts
/// addresses that the C library has reserved in advance; only RLIMIT_DATA limits their use.
void limitMemory(std::size_t more)
{
    std::size_t all = 0;
    std::size_t data = 0;
    std::size_t skipped = 0;
    std::ifstream("/proc/self/statm") >> all >> skipped >> skipped >> skipped >> skipped >> data;
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const rlimit addresses{all * page + more, all * page + more};
    const rlimit written{data * page + more, data * page + more};
    ::setrlimit(RLIMIT_AS, &addresses);
    ::setrlimit(RLIMIT_DATA, &written);
}

/// Starts a child process that may use `more` bytes of memory beyond the size of this one, and that
/// runs the reader on the product's end of the pair. Returns the id of the child, whose exit status
/// is 0 if the reader returns true, 1 if it returns false, and 2 after an exception.
pid_t readInLittleMemory(PairedSession& pair, std::size_t more,
                         const std::function<bool(HTTPSession&)>& reader)
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::set_terminate([] { ::_exit(2); });
        [&]() noexcept {
            pair.closeTest();
            limitMemory(more);
            ::_exit(reader(pair.session) ? 0 : 1);
        }();
    }
    pair.session.closeSession();
    return child;
}

/// Returns whether the child of readInLittleMemory() ends with status 0.
bool endedWell(pid_t child)
{
    int status = 0;
    return ::waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

class HTTPClient_ResponseTest : public QObject
{
    Q_OBJECT

private slots:
    void lineIsSplit_data();
    void lineIsSplit();
    void halvesOfALineAreAppended();
    void halvesMayBeAppendedToTheLineItself();

    void headLineEndsAt102400Bytes();
    void headWithoutASocketIsEmpty();
    void plainBodyIsReceivedInPiecesOfAtMost10240Bytes();
    void thousandChunksArriveWhole();

    void hugeBodyReservesNoMemory_data();
    void hugeBodyReservesNoMemory();
    void bodyBeyondTheMemoryIsAFailure_data() { hugeBodyReservesNoMemory_data(); }
    void bodyBeyondTheMemoryIsAFailure();
    void headBeyondTheMemoryEndsThere();
};

void HTTPClient_ResponseTest::lineIsSplit_data()
{
    const support::Rows<QByteArray, QByteArray, QByteArray> row("line", "name", "value");

    row("header", "Server: x/1\r\n", "Server", "x/1");
    row("header without line end", "Server: x/1", "Server", "x/1");
    row("header with a bare line feed", "Server: x/1\n", "Server", "x/1");
    row("line ends on both sides", "\r\n\n\rA: b\r\n\r\n", "A", "b");
    row("line end inside stays", "A: b\r\nC: d\r\n", "A", "b\r\nC: d");
    row("value empty", "A: \r\n", "A", "");
    row("name empty", ": b\r\n", "", "b");
    row("separator alone", ": ", "", "");
    row("first separator counts", "A: b: c\r\n", "A", "b: c");
    row("colon before the separator", "A:b: c\r\n", "A:b", "c");
    row("two spaces", "A:  b\r\n", "A", " b");
    row("space before the colon", "A : b\r\n", "A ", "b");
    row("spaces and tabs stay", " \tA: b \t\r\n", " \tA", "b \t");
    row("bytes outside ASCII", "\xC4: \xFF\r\n", "\xC4", "\xFF");
    row("zero bytes", QByteArray("A\0: \0b", 6), QByteArray("A\0", 2), QByteArray("\0b", 2));

    row("no separator", "Server\r\n", "", "");
    row("colon without space", "Server:x\r\n", "", "");
    row("colon at the end", "Server:\r\n", "", "");
    row("colon and tab", "Server:\tx\r\n", "", "");
    row("space alone", "Server x\r\n", "", "");
    row("empty", "", "", "");
    row("line end alone", "\r\n", "", "");
    row("line feeds alone", "\n\n", "", "");

    row("status line", "HTTP/1.1 200 OK\r\n", "HTTP/1.1", "200 OK");
    row("status line without reason", "HTTP/1.1 404\r\n", "HTTP/1.1", "404");
    row("status line with a colon", "HTTP/1.1 200 a: b\r\n", "HTTP/1.1", "200 a: b");
    row("status line after line ends", "\r\nHTTP/1.1 200 OK", "HTTP/1.1", "200 OK");
    row("two spaces in the status line", "HTTP/1.1  200\r\n", "HTTP/1.1", " 200");
    row("space ends the status line", "HTTP/1.1 \r\n", "HTTP/1.1", "");
    row("four letters are enough", "HTTP: b\r\n", "HTTP:", "b");
    row("status word without space", "HTTP/1.1\r\n", "", "");
    row("status word alone", "HTTP", "", "");
    row("three letters", "HTT: b", "HTT", "b");
    row("other case", "Http: b", "Http", "b");
    row("space before the status word", " HTTP/1.1 200 OK", "", "");
}

void HTTPClient_ResponseTest::lineIsSplit()
{
    QFETCH(QByteArray, line);
    std::string name;
    std::string value;
    HTTPClient().parseLine(line.toStdString(), name, value);
    QTEST(QByteArray::fromStdString(name), "name");
    QTEST(QByteArray::fromStdString(value), "value");
}

void HTTPClient_ResponseTest::halvesOfALineAreAppended()
{
    std::string name = "name ";
    std::string value = "value ";
    HTTPClient().parseLine("A: b\r\n", name, value);
    HTTPClient().parseLine("HTTP/1.1 200 OK\r\n", name, value);
    HTTPClient().parseLine("nothing\r\n", name, value);
    QCOMPARE(name, std::string("name AHTTP/1.1"));
    QCOMPARE(value, std::string("value b200 OK"));
}

void HTTPClient_ResponseTest::halvesMayBeAppendedToTheLineItself()
{
    const std::string line = "Content-Disposition: " + std::string(100, 'v') + "\r\n";
    const std::string name = "Content-Disposition";
    const std::string value(100, 'v');
    std::string both = line;
    std::string other;
    HTTPClient().parseLine(both, both, other);
    QCOMPARE(both, line + name);
    QCOMPARE(other, value);
    both = line;
    other.clear();
    HTTPClient().parseLine(both, other, both);
    QCOMPARE(other, name);
    QCOMPARE(both, line + value);
    both = line;
    HTTPClient().parseLine(both, both, both);
    QCOMPARE(both, line + name + value);
    other.clear();
    HTTPClient().parseLine(line, other, other);
    QCOMPARE(other, name + value);
}

// Not in a conversation file: delivered byte by byte, this head would exceed the time limit of the
// players on a busy machine.
void HTTPClient_ResponseTest::headLineEndsAt102400Bytes()
{
    PairedSession pair;
    QVERIFY(pair.send("A: " + QByteArray(102397, 'x') + "B: y\r\n\r\n"));
    HTTPResponse response;
    QVERIFY(HTTPClient().readHeader(pair.session, response));
    QVERIFY(response.headers == (HTTPHeaders{{"A", std::string(102397, 'x')}, {"B", "y"}}));
}

void HTTPClient_ResponseTest::headWithoutASocketIsEmpty()
{
    HTTPSession session;
    HTTPResponse response;
    QVERIFY(HTTPClient().readHeader(session, response));
    QCOMPARE(response.statusCode, 0);
    QVERIFY(response.headers.empty());
}

void HTTPClient_ResponseTest::plainBodyIsReceivedInPiecesOfAtMost10240Bytes()
{
    // On a packet socket, a receive returns the requested bytes of a packet and discards the rest.
    PairedSession pair(SOCK_SEQPACKET);
    for (const char filler : {'a', 'b', 'c'}) {
        QVERIFY(pair.send(QByteArray(12000, filler)));
    }
    HTTPResponse response;
    response.contentLength = 25000;
    std::string body;
    QVERIFY(HTTPClient().readBody(pair.session, response, body));
    QCOMPARE(response.received, 30720u);
    QVERIFY(body == std::string(10240, 'a') + std::string(10240, 'b') + std::string(10240, 'c'));
}

void HTTPClient_ResponseTest::thousandChunksArriveWhole()
{
    PairedSession pair;
    std::string sent;
    std::string expected;
    for (int chunk = 0; chunk < 1000; ++chunk) {
        const std::string data(26, static_cast<char>('a' + chunk % 26));
        sent += "1A\r\n" + data + "\r\n";
        expected += data;
    }
    QVERIFY(pair.send(QByteArray::fromStdString(sent + "0\r\n\r\n")));
    pair.failInsteadOfWaiting();
    HTTPResponse response;
    response.chunked = true;
    std::string body;
    QVERIFY(HTTPClient().readBody(pair.session, response, body));
    QCOMPARE(response.received, 26000u);
    QVERIFY(body == expected);
    QCOMPARE(pair.session.readLimit(body, 1), 0); // nothing is left unread
}

void HTTPClient_ResponseTest::hugeBodyReservesNoMemory_data()
{
    const support::Rows<QByteArray, bool> row("start", "chunked");
    row("plain", "", false);
    row("chunked", "7fffffff\r\n", true);
}

void HTTPClient_ResponseTest::hugeBodyReservesNoMemory()
{
    QFETCH(QByteArray, start);
    QFETCH(bool, chunked);
    PairedSession pair;
    QVERIFY(pair.send(start + "abc"));
    pair.closeTest();
    HTTPResponse response;
    response.contentLength = 0xFFFFFFFF;
    response.chunked = chunked;
    std::string body;
    QVERIFY(!HTTPClient().readBody(pair.session, response, body));
    QCOMPARE(body, std::string("abc"));
    QVERIFY2(body.capacity() < 100000, qPrintable(QString::number(body.capacity())));
}

void HTTPClient_ResponseTest::bodyBeyondTheMemoryIsAFailure()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("a sanitizer's memory cannot be limited");
#endif
    QFETCH(QByteArray, start);
    QFETCH(bool, chunked);
    PairedSession pair;
    const pid_t child = readInLittleMemory(pair, 64 << 20, [&](HTTPSession& session) {
        HTTPResponse response;
        response.contentLength = 0xFFFFFFFF;
        response.chunked = chunked;
        std::string body;
        return !HTTPClient().readBody(session, response, body);
    });
    QVERIFY(child >= 0);
    QVERIFY(pair.send(start));
    const QByteArray block(1 << 20, 'x');
    int blocks = 0;
    while (blocks < 500 && pair.send(block)) {
        ++blocks;
    }
    QVERIFY(endedWell(child));
    QVERIFY2(blocks < 500, "the whole body fitted into the memory");
}

// Each line has at most eight bytes and becomes a map entry, which takes more memory than the line.
void HTTPClient_ResponseTest::headBeyondTheMemoryEndsThere()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("a sanitizer's memory cannot be limited");
#endif
    PairedSession pair;
    const pid_t child = readInLittleMemory(pair, 4 << 20, [](HTTPSession& session) {
        HTTPResponse response;
        return HTTPClient().readHeader(session, response) && response.statusCode == 206 &&
               response.headers.count("0") == 1;
    });
    QVERIFY(child >= 0);
    QVERIFY(pair.send("HTTP/1.1 206 Partial Content\r\n"));
    constexpr int most = 500'000;
    int lines = 0;
    while (lines < most && pair.send(QByteArray::number(lines, 36) + ": \r\n")) {
        ++lines;
    }
    pair.closeTest();
    QVERIFY(endedWell(child));
    QVERIFY2(lines < most, "the whole head fitted into the memory");
}

BELUN_TEST(HTTPClient_ResponseTest)
#include "HTTPClient_ResponseTest.moc"
