// parseLine, and cases that the conversation files cannot express: long lines, sizes of receives,
// failing receives, memory.
#include "http/HTTPClient.h"

#include "tests/kit/SocketPair.h"
#include "tests/kit/TestMain.h"

#include <exception>
#include <fstream>
#include <functional>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTest>

using support::SocketPair;

namespace {

/// A session that reads what the test sends.
class Incoming
{
public:
    Incoming()
    {
        session.socketDescriptor = m_pair.product;
        m_pair.product = -1;
    }

    void deliver(const std::string& bytes)
    {
        QVERIFY(m_pair.send(QByteArray::fromStdString(bytes)));
    }
    void close() { m_pair.closeTest(); }
    /// Makes every receive that would block fail.
    void failInsteadOfWaiting() { ::fcntl(session.socketDescriptor, F_SETFL, O_NONBLOCK); }
    std::string unread()
    {
        failInsteadOfWaiting();
        std::string bytes;
        session.readLimit(bytes, 1000000);
        return bytes;
    }

    HTTPSession session;

private:
    SocketPair m_pair;
};

/// Limits the memory of this process to `more` bytes beyond its present size. The C library
/// reserves addresses in advance, which are part of the first limit; only the second one limits
/// their use.
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
pid_t readInLittleMemory(SocketPair& pair, std::size_t more,
                         const std::function<bool(HTTPSession&)>& reader)
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::set_terminate([] { ::_exit(2); });
        [&]() noexcept {
            pair.closeTest();
            limitMemory(more);
            HTTPSession session;
            session.socketDescriptor = pair.product;
            ::_exit(reader(session) ? 0 : 1);
        }();
    }
    ::close(pair.product);
    pair.product = -1;
    return child;
}

HTTPResponse announced(std::uint32_t length)
{
    HTTPResponse response;
    response.contentLength = length;
    return response;
}

HTTPResponse chunked()
{
    HTTPResponse response;
    response.chunked = true;
    return response;
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
    void failingConnectionEndsTheHeadWithoutAnError();

    void plainBodyIsReceivedInPiecesOfAtMost10240Bytes();
    void plainBodyOfAFailingConnectionEndsWithWhatArrived();
    void hugeAnnouncedLengthReservesNoMemory();

    void thousandChunksArriveWhole();
    void chunkOfAFailingConnectionEndsWithWhatArrived();
    void sizeLineOfAFailingConnectionEndsTheBody();
    void hugeChunkReservesNoMemory();
    void bodyBeyondTheMemoryIsAFailure_data();
    void bodyBeyondTheMemoryIsAFailure();
    void headBeyondTheMemoryEndsThere();
};

void HTTPClient_ResponseTest::lineIsSplit_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");
    const auto row = [](const char* tag, const QByteArray& line, const QByteArray& name,
                        const QByteArray& value) { QTest::newRow(tag) << line << name << value; };

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
    Incoming incoming;
    incoming.deliver("A: " + std::string(102397, 'x') + "B: y\r\n\r\n");
    HTTPResponse response;
    QVERIFY(HTTPClient().readHeader(incoming.session, response));
    QCOMPARE(response.headers.size(), std::size_t(2));
    QCOMPARE(response.headers.at("A"), std::string(102397, 'x'));
    QCOMPARE(response.headers.at("B"), std::string("y"));
}

void HTTPClient_ResponseTest::failingConnectionEndsTheHeadWithoutAnError()
{
    Incoming incoming;
    incoming.deliver("HTTP/1.1 200 OK\r\nContent-Length: 5");
    incoming.failInsteadOfWaiting();
    HTTPResponse response;
    QVERIFY(HTTPClient().readHeader(incoming.session, response));
    QCOMPARE(response.statusCode, 200);
    QCOMPARE(response.contentLength, 5u);

    HTTPSession withoutSocket;
    HTTPResponse untouched;
    QVERIFY(HTTPClient().readHeader(withoutSocket, untouched));
    QCOMPARE(untouched.statusCode, 0);
    QVERIFY(untouched.headers.empty());
}

void HTTPClient_ResponseTest::plainBodyIsReceivedInPiecesOfAtMost10240Bytes()
{
    // On a packet socket, a receive returns the requested bytes of a packet and discards the rest.
    int ends[2] = {-1, -1};
    QCOMPARE(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    for (const char filler : {'a', 'b', 'c'}) {
        const std::string packet(12000, filler);
        QCOMPARE(::send(ends[1], packet.data(), packet.size(), MSG_NOSIGNAL), ssize_t(12000));
    }
    HTTPSession session;
    session.socketDescriptor = ends[0];
    HTTPResponse response = announced(25000);
    std::string body;
    QVERIFY(HTTPClient().readBody(session, response, body));
    ::close(ends[1]);
    QCOMPARE(response.received, 30720u);
    QCOMPARE(body.size(), std::size_t(30720));
    QVERIFY(body == std::string(10240, 'a') + std::string(10240, 'b') + std::string(10240, 'c'));
}

void HTTPClient_ResponseTest::plainBodyOfAFailingConnectionEndsWithWhatArrived()
{
    Incoming incoming;
    incoming.deliver("hel");
    incoming.failInsteadOfWaiting();
    HTTPResponse response = announced(5);
    std::string body;
    QVERIFY(!HTTPClient().readBody(incoming.session, response, body));
    QCOMPARE(body, std::string("hel"));
    // A negative result is not added to the count.
    QCOMPARE(response.received, 3u);
}

void HTTPClient_ResponseTest::hugeAnnouncedLengthReservesNoMemory()
{
    Incoming incoming;
    incoming.deliver("abc");
    incoming.close();
    HTTPResponse response = announced(4294967295);
    std::string body;
    QVERIFY(!HTTPClient().readBody(incoming.session, response, body));
    QCOMPARE(body, std::string("abc"));
    QVERIFY2(body.capacity() < 100000, qPrintable(QString::number(body.capacity())));
}

void HTTPClient_ResponseTest::thousandChunksArriveWhole()
{
    Incoming incoming;
    std::string sent;
    std::string expected;
    for (int chunk = 0; chunk < 1000; ++chunk) {
        const auto filler = static_cast<char>('a' + chunk % 26);
        sent += std::string("1A\r\n") + std::string(26, filler) + "\r\n";
        expected += std::string(26, filler);
    }
    incoming.deliver(sent + "0\r\n\r\n");
    HTTPResponse response = chunked();
    std::string body;
    QVERIFY(HTTPClient().readBody(incoming.session, response, body));
    QCOMPARE(response.received, 26000u);
    QVERIFY(body == expected);
    QCOMPARE(incoming.unread(), std::string());
}

void HTTPClient_ResponseTest::chunkOfAFailingConnectionEndsWithWhatArrived()
{
    Incoming incoming;
    incoming.deliver("5\r\nhel");
    incoming.failInsteadOfWaiting();
    HTTPResponse response = chunked();
    std::string body;
    QVERIFY(!HTTPClient().readBody(incoming.session, response, body));
    QCOMPARE(body, std::string("hel"));
    QCOMPARE(response.chunkLeft, 2);
}

void HTTPClient_ResponseTest::sizeLineOfAFailingConnectionEndsTheBody()
{
    Incoming incoming;
    incoming.failInsteadOfWaiting();
    HTTPResponse response = chunked();
    std::string body;
    QVERIFY(!HTTPClient().readBody(incoming.session, response, body));
    QVERIFY(!response.lastChunkSeen);

    incoming.deliver("0\r\n");
    QVERIFY(!HTTPClient().readBody(incoming.session, response, body));
    QVERIFY(response.lastChunkSeen);
}

void HTTPClient_ResponseTest::hugeChunkReservesNoMemory()
{
    Incoming incoming;
    incoming.deliver("7fffffff\r\nabc");
    incoming.close();
    HTTPResponse response = chunked();
    std::string body;
    QVERIFY(!HTTPClient().readBody(incoming.session, response, body));
    QCOMPARE(body, std::string("abc"));
    QVERIFY2(body.capacity() < 100000, qPrintable(QString::number(body.capacity())));
    QCOMPARE(response.chunkLeft, 2147483644);
}

void HTTPClient_ResponseTest::bodyBeyondTheMemoryIsAFailure_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<bool>("chunked");
    QTest::newRow("plain") << QByteArray("x") << false;
    QTest::newRow("chunked") << QByteArray("7fffffff\r\n") << true;
}

void HTTPClient_ResponseTest::bodyBeyondTheMemoryIsAFailure()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("a sanitizer's memory cannot be limited");
#endif
    QFETCH(QByteArray, start);
    QFETCH(bool, chunked);
    SocketPair pair;
    const pid_t child = readInLittleMemory(pair, 64 << 20, [&](HTTPSession& session) {
        HTTPResponse response = announced(0xFFFFFFFF);
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
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY2(status == 0, qPrintable(QStringLiteral("wait status %1").arg(status)));
    QVERIFY2(blocks < 500, "the whole body fitted into the memory");
}

// Each line has at most eight bytes and becomes an entry of a map, which takes more memory.
void HTTPClient_ResponseTest::headBeyondTheMemoryEndsThere()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("a sanitizer's memory cannot be limited");
#endif
    SocketPair pair;
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
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY2(status == 0, qPrintable(QStringLiteral("wait status %1").arg(status)));
    QVERIFY2(lines < most, "the whole head fitted into the memory");
}

BELUN_TEST(HTTPClient_ResponseTest)
#include "HTTPClient_ResponseTest.moc"
