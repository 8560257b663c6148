#include "http/HTTPSession.h"

#include "tests/kit/NoDescriptorsLeft.h"
#include "tests/kit/PipeSignal.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/TestMain.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>

#include <arpa/inet.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTest>

using support::Peer;
using support::ScriptedServer;

namespace {

/// A session on one end of a socket pair, and the peer's end.
class PairedSession
{
public:
    explicit PairedSession(int socketType = SOCK_STREAM)
    {
        int ends[2] = {-1, -1};
        if (::socketpair(AF_UNIX, socketType | SOCK_CLOEXEC, 0, ends) != 0) {
            qCritical("no socket pair");
        }
        session.socketDescriptor = ends[0];
        m_peer = ends[1];
    }
    ~PairedSession() { closePeer(); }
    PairedSession(const PairedSession&) = delete;
    PairedSession& operator=(const PairedSession&) = delete;

    void deliver(const std::string& bytes)
    {
        QCOMPARE(::send(m_peer, bytes.data(), bytes.size(), MSG_NOSIGNAL), ssize_t(bytes.size()));
    }
    void closePeer()
    {
        if (m_peer != -1) {
            ::close(m_peer);
            m_peer = -1;
        }
    }
    /// Makes every receive that would block fail.
    void failInsteadOfWaiting() { ::fcntl(session.socketDescriptor, F_SETFL, O_NONBLOCK); }
    /// Returns what the peer received, at most 4,096 bytes.
    std::string arrived() const
    {
        std::string bytes(4096, '\0');
        const ssize_t count = ::recv(m_peer, bytes.data(), bytes.size(), MSG_DONTWAIT);
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes;
    }

    HTTPSession session;

private:
    int m_peer = -1;
};

bool isOpen(int descriptor)
{
    return ::fcntl(descriptor, F_GETFD) != -1;
}

/// Returns the remaining bytes, at most 100,000, without waiting.
std::string rest(HTTPSession& session)
{
    ::fcntl(session.socketDescriptor, F_SETFL, O_NONBLOCK);
    std::string bytes;
    session.readLimit(bytes, 100000);
    return bytes;
}

} // namespace

class HTTPSessionTest : public QObject
{
    Q_OBJECT

private slots:
    void newSessionHasNoSocket();
    void initSocketMakesOneStreamSocketAndKeepsIt();
    void connectReachesTheServer();
    void connectUsesTheSocketThatIsOpen();
    void connectToAnotherServerWhileConnectedFails();
    void failedConnectLeavesTheSocketOpenUntilDestruction();
    void failedConnectLeavesTheSocketOpenUntilClosed();
    void connectOnAClosedDescriptorFails();
    void connectWithoutADescriptorLeftFails();
    void closeSessionClosesAndForgetsTheSocket();
    void destructionClosesTheSocket();

    void sendReturnsWhatTheSystemSays();
    void sendToAClosedPeerFails();
    void sendLeavesThePipeSignalAsItWas();
    void sendWithoutSocketFails();
    void readReturnsWhatHasArrivedUpToTheLength();
    void readOnAClosedPeerReturnsZero();
    void readWithoutSocketFails();

    void lineIsReadUpToItsLineFeed_data();
    void lineIsReadUpToItsLineFeed();
    void lineIsEmptiedFirst();
    void lineIsReceivedByteByByte();
    void lineWaitsForBytesThatComeLater();
    void lineOfAClosedPeerEndsWithWhatArrived();
    void lineOfAClosedPeerWithoutAByteIsZero();
    void lineAfterAnErrorWithoutAByteIsMinusOne();
    void lineAfterAnErrorWithThreeBytesIsThree();
    void readLineWithoutSocketReturnsMinusOne();

    void blockIsReadExactly_data();
    void blockIsReadExactly();
    void blockIsReceivedInPiecesOfAtMost1024Bytes();
    void blockOf3000BytesArrivesWhole();
    void blockOfAClosedPeerIsShort();
    void blockAfterAnErrorIsShort();
    void readLimitWithoutSocketReturnsZero();
    void hugeBlockReservesNoMemory();
};

void HTTPSessionTest::newSessionHasNoSocket()
{
    const HTTPSession session;
    QCOMPARE(session.socketDescriptor, -1);
}

void HTTPSessionTest::initSocketMakesOneStreamSocketAndKeepsIt()
{
    HTTPSession session;
    QVERIFY(session.initSocket());
    const int descriptor = session.socketDescriptor;
    QVERIFY(isOpen(descriptor));
    int value = 0;
    socklen_t size = sizeof value;
    QCOMPARE(::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &value, &size), 0);
    QCOMPARE(value, int(SOCK_STREAM));
    QCOMPARE(::getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &value, &size), 0);
    QCOMPARE(value, int(AF_INET));
    QVERIFY((::fcntl(descriptor, F_GETFL) & O_NONBLOCK) == 0);
    QVERIFY(session.initSocket());
    QCOMPARE(session.socketDescriptor, descriptor);
}

void HTTPSessionTest::connectReachesTheServer()
{
    ScriptedServer server([](Peer& peer) {
        peer.receiveUntil("hello");
        peer.send("good day");
    });
    HTTPSession session;
    QVERIFY(session.connect(inet_addr("127.0.0.1"), htons(server.port())));
    QCOMPARE(session.send("hello", 5), 5);
    std::string answer;
    QCOMPARE(session.readLimit(answer, 8), 8);
    QCOMPARE(answer, std::string("good day"));
    session.closeSession();
    QVERIFY(server.waitForScripts(1));
}

void HTTPSessionTest::connectUsesTheSocketThatIsOpen()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPSession session;
    QVERIFY(session.initSocket());
    const int descriptor = session.socketDescriptor;
    QVERIFY(session.connect(inet_addr("127.0.0.1"), htons(server.port())));
    QCOMPARE(session.socketDescriptor, descriptor);
    session.closeSession();
    QVERIFY(server.waitForScripts(1));
}

void HTTPSessionTest::connectToAnotherServerWhileConnectedFails()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPSession session;
    QVERIFY(session.connect(inet_addr("127.0.0.1"), htons(server.port())));
    const int descriptor = session.socketDescriptor;
    QVERIFY(!session.connect(inet_addr("127.0.0.1"), htons(server.port())));
    QCOMPARE(session.socketDescriptor, descriptor);
    session.closeSession();
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.connectionCount(), 1);
}

void HTTPSessionTest::failedConnectLeavesTheSocketOpenUntilDestruction()
{
    int descriptor = -1;
    {
        HTTPSession session;
        QVERIFY(!session.connect(inet_addr("127.0.0.1"), htons(1)));
        descriptor = session.socketDescriptor;
        QVERIFY(isOpen(descriptor));
    }
    QVERIFY(!isOpen(descriptor));
}

void HTTPSessionTest::failedConnectLeavesTheSocketOpenUntilClosed()
{
    HTTPSession session;
    QVERIFY(!session.connect(inet_addr("127.0.0.1"), htons(1)));
    const int descriptor = session.socketDescriptor;
    QVERIFY(isOpen(descriptor));
    session.closeSession();
    QVERIFY(!isOpen(descriptor));
    QCOMPARE(session.socketDescriptor, -1);
}

void HTTPSessionTest::connectOnAClosedDescriptorFails()
{
    HTTPSession session;
    QVERIFY(session.initSocket());
    ::close(session.socketDescriptor);
    QVERIFY(!session.connect(inet_addr("127.0.0.1"), htons(1)));
    session.socketDescriptor = -1;
}

void HTTPSessionTest::connectWithoutADescriptorLeftFails()
{
    HTTPSession session;
    bool made = true;
    bool connected = true;
    {
        const support::NoDescriptorsLeft limit;
        made = session.initSocket();
        connected = session.connect(htonl(INADDR_LOOPBACK), htons(80));
    }
    QVERIFY(!made);
    QVERIFY(!connected);
    QCOMPARE(session.socketDescriptor, -1);
}

void HTTPSessionTest::closeSessionClosesAndForgetsTheSocket()
{
    HTTPSession session;
    QVERIFY(session.initSocket());
    const int descriptor = session.socketDescriptor;
    session.closeSession();
    QVERIFY(!isOpen(descriptor));
    QCOMPARE(session.socketDescriptor, -1);
    session.closeSession();
    QCOMPARE(session.socketDescriptor, -1);
}

void HTTPSessionTest::destructionClosesTheSocket()
{
    int descriptor = -1;
    {
        HTTPSession session;
        QVERIFY(session.initSocket());
        descriptor = session.socketDescriptor;
    }
    QVERIFY(!isOpen(descriptor));
}

void HTTPSessionTest::sendReturnsWhatTheSystemSays()
{
    PairedSession pair;
    QCOMPARE(pair.session.send("abcdef", 4), 4);
    QCOMPARE(pair.arrived(), std::string("abcd"));
    QCOMPARE(pair.session.send("", 0), 0);

    pair.failInsteadOfWaiting();
    const std::string block(100000, 'x');
    int last = 1;
    for (int turn = 0; turn < 10000 && last > 0; ++turn) {
        last = pair.session.send(block.data(), int(block.size()));
    }
    QCOMPARE(last, -1);
    QCOMPARE(errno, EAGAIN);
}

void HTTPSessionTest::sendToAClosedPeerFails()
{
    const support::DeadlyPipeSignal deadly;
    const int others = support::threadsWithoutPipeSignal();
    PairedSession pair;
    pair.closePeer();
    QCOMPARE(pair.session.send("abc", 3), -1);
    QCOMPARE(errno, EPIPE);
    QCOMPARE(support::threadsWithoutPipeSignal(), others);
}

void HTTPSessionTest::sendLeavesThePipeSignalAsItWas()
{
    const int others = support::threadsWithoutPipeSignal();
    sigset_t pipeSignal;
    ::sigemptyset(&pipeSignal);
    ::sigaddset(&pipeSignal, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
    ::raise(SIGPIPE);
    PairedSession pair;
    pair.closePeer();
    QCOMPARE(pair.session.send("abc", 3), -1);
    sigset_t pending;
    ::sigpending(&pending);
    const bool isPending = ::sigismember(&pending, SIGPIPE) == 1;
    const int blocking = support::threadsWithoutPipeSignal();
    const timespec atOnce{};
    ::sigtimedwait(&pipeSignal, nullptr, &atOnce);
    ::pthread_sigmask(SIG_UNBLOCK, &pipeSignal, nullptr);
    QVERIFY(isPending);
    QCOMPARE(blocking, others + 1);
}

void HTTPSessionTest::sendWithoutSocketFails()
{
    HTTPSession session;
    QCOMPARE(session.send("abc", 3), -1);
}

void HTTPSessionTest::readReturnsWhatHasArrivedUpToTheLength()
{
    PairedSession pair;
    pair.deliver("abcdef");
    char buffer[10] = {};
    QCOMPARE(pair.session.read(buffer, 4), 4);
    QCOMPARE(QByteArray(buffer), QByteArray("abcd"));
    QCOMPARE(pair.session.read(buffer, 4), 2);
    QCOMPARE(QByteArray(buffer), QByteArray("efcd"));
}

void HTTPSessionTest::readOnAClosedPeerReturnsZero()
{
    PairedSession pair;
    pair.closePeer();
    char byte = 0;
    QCOMPARE(pair.session.read(&byte, 1), 0);
}

void HTTPSessionTest::readWithoutSocketFails()
{
    HTTPSession session;
    char byte = 0;
    QCOMPARE(session.read(&byte, 1), -1);
}

void HTTPSessionTest::lineIsReadUpToItsLineFeed_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<int>("limit");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("unread");
    const auto row = [](const char* name, const QByteArray& sent, int limit, const QByteArray& line,
                        const QByteArray& unread) {
        QTest::newRow(name) << sent << limit << line << unread;
    };
    row("both line end bytes stay", "abc\r\nnext", 1024, "abc\r\n", "next");
    row("line feed alone", "abc\nnext", 1024, "abc\n", "next");
    row("carriage return alone is no end", "a\rb\nnext", 1024, "a\rb\n", "next");
    row("empty line", "\r\nnext", 1024, "\r\n", "next");
    row("bare line feed first", "\nnext", 1024, "\n", "next");
    row("limit of 5 on abcdefg", "abcdefg\n", 5, "abcde", "fg\n");
    row("limit reached by the line feed", "abcd\nnext", 5, "abcd\n", "next");
    row("limit one short of the line feed", "abcd\nnext", 4, "abcd", "\nnext");
    row("limit of 1", "abc\n", 1, "a", "bc\n");
    row("limit 0 is none", "abcdefg\nnext", 0, "abcdefg\n", "next");
    row("negative limit is none", "abcdefg\nnext", -5, "abcdefg\n", "next");
    row("zero bytes are bytes", QByteArray("a\0b\n\0", 5), 1024, QByteArray("a\0b\n", 4),
        QByteArray("\0", 1));
    row("bytes outside ASCII", "\xFF\x80\x8A\nnext", 1024, "\xFF\x80\x8A\n", "next");
}

void HTTPSessionTest::lineIsReadUpToItsLineFeed()
{
    QFETCH(QByteArray, sent);
    QFETCH(int, limit);
    QFETCH(QByteArray, line);
    PairedSession pair;
    pair.deliver(sent.toStdString());
    std::string text;
    QCOMPARE(pair.session.readLine(text, limit), line.size());
    QCOMPARE(QByteArray::fromStdString(text), line);
    QTEST(QByteArray::fromStdString(rest(pair.session)), "unread");
}

void HTTPSessionTest::lineIsEmptiedFirst()
{
    PairedSession pair;
    pair.deliver("new\n");
    std::string line = "old";
    QCOMPARE(pair.session.readLine(line, 0), 4);
    QCOMPARE(line, std::string("new\n"));
    pair.closePeer();
    QCOMPARE(pair.session.readLine(line, 0), 0);
    QCOMPARE(line, std::string());
}

void HTTPSessionTest::lineIsReceivedByteByByte()
{
    // On a packet socket, a receive discards the rest of the packet.
    PairedSession pair(SOCK_SEQPACKET);
    pair.deliver("axxx");
    pair.deliver("bxxx");
    pair.deliver("\nxxx");
    std::string line;
    QCOMPARE(pair.session.readLine(line, 0), 3);
    QCOMPARE(line, std::string("ab\n"));
}

void HTTPSessionTest::lineWaitsForBytesThatComeLater()
{
    ScriptedServer server([](Peer& peer) {
        peer.send("ab");
        peer.receiveUntil("go on");
        peer.send("c\n");
    });
    HTTPSession session;
    QVERIFY(session.connect(inet_addr("127.0.0.1"), htons(server.port())));
    std::string line;
    QCOMPARE(session.readLine(line, 2), 2);
    QCOMPARE(line, std::string("ab"));
    QCOMPARE(session.send("go on", 5), 5);
    QCOMPARE(session.readLine(line, 0), 2);
    QCOMPARE(line, std::string("c\n"));
    session.closeSession();
    QVERIFY(server.waitForScripts(1));
}

void HTTPSessionTest::lineOfAClosedPeerEndsWithWhatArrived()
{
    PairedSession pair;
    pair.deliver("abc");
    pair.closePeer();
    std::string line;
    QCOMPARE(pair.session.readLine(line, 1024), 3);
    QCOMPARE(line, std::string("abc"));
}

void HTTPSessionTest::lineOfAClosedPeerWithoutAByteIsZero()
{
    PairedSession pair;
    pair.closePeer();
    std::string line = "old";
    QCOMPARE(pair.session.readLine(line, 1024), 0);
    QCOMPARE(line, std::string());
}

void HTTPSessionTest::lineAfterAnErrorWithoutAByteIsMinusOne()
{
    PairedSession pair;
    pair.failInsteadOfWaiting();
    std::string line = "old";
    QCOMPARE(pair.session.readLine(line, 1024), -1);
    QCOMPARE(line, std::string());
}

void HTTPSessionTest::lineAfterAnErrorWithThreeBytesIsThree()
{
    PairedSession pair;
    pair.deliver("abc");
    pair.failInsteadOfWaiting();
    std::string line;
    QCOMPARE(pair.session.readLine(line, 1024), 3);
    QCOMPARE(line, std::string("abc"));
}

void HTTPSessionTest::readLineWithoutSocketReturnsMinusOne()
{
    HTTPSession session;
    std::string line;
    QCOMPARE(session.readLine(line, 1024), -1);
}

void HTTPSessionTest::blockIsReadExactly_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<QByteArray>("unread");
    QTest::newRow("5 of 8") << 5 << QByteArray("ab\r\nc") << QByteArray("def");
    QTest::newRow("1 of 8") << 1 << QByteArray("a") << QByteArray("b\r\ncdef");
    QTest::newRow("all 8") << 8 << QByteArray("ab\r\ncdef") << QByteArray();
    QTest::newRow("none") << 0 << QByteArray() << QByteArray("ab\r\ncdef");
    QTest::newRow("negative") << -1 << QByteArray() << QByteArray("ab\r\ncdef");
    QTest::newRow("most negative") << INT_MIN << QByteArray() << QByteArray("ab\r\ncdef");
}

void HTTPSessionTest::blockIsReadExactly()
{
    QFETCH(int, count);
    QFETCH(QByteArray, block);
    PairedSession pair;
    pair.deliver("ab\r\ncdef");
    std::string data = "old";
    QCOMPARE(pair.session.readLimit(data, count), block.size());
    QCOMPARE(QByteArray::fromStdString(data), block);
    QTEST(QByteArray::fromStdString(rest(pair.session)), "unread");
}

void HTTPSessionTest::blockIsReceivedInPiecesOfAtMost1024Bytes()
{
    // On a packet socket, a receive discards the rest of the packet.
    PairedSession pair(SOCK_SEQPACKET);
    pair.deliver(std::string(3000, 'a'));
    pair.deliver(std::string(3000, 'b'));
    pair.deliver(std::string(3000, 'c'));
    pair.deliver("left");
    std::string data;
    QCOMPARE(pair.session.readLimit(data, 3000), 3000);
    QCOMPARE(data, std::string(1024, 'a') + std::string(1024, 'b') + std::string(952, 'c'));
    QCOMPARE(pair.session.readLimit(data, 4), 4);
    QCOMPARE(data, std::string("left"));
}

void HTTPSessionTest::blockOf3000BytesArrivesWhole()
{
    PairedSession pair;
    pair.deliver(std::string(1500, 'a') + std::string(1500, 'b') + "more");
    std::string data;
    QCOMPARE(pair.session.readLimit(data, 3000), 3000);
    QCOMPARE(data, std::string(1500, 'a') + std::string(1500, 'b'));
    QCOMPARE(rest(pair.session), std::string("more"));
}

void HTTPSessionTest::blockOfAClosedPeerIsShort()
{
    PairedSession pair;
    pair.deliver(std::string(2000, 'a'));
    pair.closePeer();
    std::string data = "old";
    QCOMPARE(pair.session.readLimit(data, 3000), 2000);
    QCOMPARE(data, std::string(2000, 'a'));
    QCOMPARE(pair.session.readLimit(data, 3000), 0);
    QCOMPARE(data, std::string());
}

void HTTPSessionTest::blockAfterAnErrorIsShort()
{
    PairedSession pair;
    pair.deliver("abc");
    pair.failInsteadOfWaiting();
    std::string data;
    QCOMPARE(pair.session.readLimit(data, 3000), 3);
    QCOMPARE(data, std::string("abc"));
    QCOMPARE(pair.session.readLimit(data, 3000), 0);
    QCOMPARE(data, std::string());
}

void HTTPSessionTest::readLimitWithoutSocketReturnsZero()
{
    HTTPSession session;
    std::string data = "old";
    QCOMPARE(session.readLimit(data, 3000), 0);
    QCOMPARE(data, std::string());
}

void HTTPSessionTest::hugeBlockReservesNoMemory()
{
    PairedSession pair;
    pair.deliver("abc");
    pair.closePeer();
    std::string data;
    QCOMPARE(pair.session.readLimit(data, INT_MAX), 3);
    QCOMPARE(data, std::string("abc"));
    QVERIFY2(data.capacity() < 10000, qPrintable(QString::number(data.capacity())));
}

BELUN_NETWORK_TEST(HTTPSessionTest)
#include "HTTPSessionTest.moc"
