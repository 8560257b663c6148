// Opening, closing and sending, and what tests/data/conversations/http/session.txt cannot express:
// sizes of receives, errors, memory.
#include "http/HTTPSession.h"

#include "tests/http/PairedSession.h"
#include "tests/http/TcpScene.h"
#include "tests/kit/NoDescriptorsLeft.h"
#include "tests/kit/PipeSignal.h"
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

class HTTPSessionTest : public QObject
{
    Q_OBJECT

private slots:
    void newSessionHasNoSocket();
    void initSocketMakesOneStreamSocketAndKeepsIt();
    void connectUsesTheSocketThatIsOpen();
    void connectToAnotherServerWhileConnectedFails();
    void failedConnectLeavesTheSocketOpen();
    void connectOnAClosedDescriptorFails();
    void connectWithoutADescriptorLeftFails();
    void closeSessionClosesAndForgetsTheSocket();
    void destructionClosesTheSocket();

    void sendReturnsWhatTheSystemSays();
    void sendToAClosedPeerFails();
    void sendLeavesThePipeSignalAsItWas();
    void readReturnsWhatHasArrivedUpToTheLength();
    void callsWithoutASocketFail();

    void lineIsReceivedByteByByte();
    void lineAfterAnErrorWithoutAByteIsMinusOne();
    void blockIsReceivedInPiecesOfAtMost1024Bytes();
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

void HTTPSessionTest::connectUsesTheSocketThatIsOpen()
{
    TcpScene scene(answering("good day", "hello"));
    QVERIFY(scene.session.initSocket());
    const int descriptor = scene.session.socketDescriptor;
    QVERIFY(scene.connect());
    QCOMPARE(scene.session.socketDescriptor, descriptor);
    QCOMPARE(scene.session.send("hello", 5), 5);
    QCOMPARE(scene.session.readLimit(scene.body, 8), 8);
    QCOMPARE(scene.body, std::string("good day"));
    QCOMPARE(scene.received(), QByteArray("hello"));
}

void HTTPSessionTest::connectToAnotherServerWhileConnectedFails()
{
    TcpScene scene(receiving());
    QVERIFY(scene.connect());
    const int descriptor = scene.session.socketDescriptor;
    QVERIFY(!scene.connect());
    QCOMPARE(scene.session.socketDescriptor, descriptor);
    QCOMPARE(scene.received(), QByteArray());
    QCOMPARE(scene.server.connectionCount(), 1);
}

void HTTPSessionTest::failedConnectLeavesTheSocketOpen()
{
    HTTPSession session;
    QVERIFY(!session.connect(inet_addr("127.0.0.1"), htons(1)));
    QVERIFY(isOpen(session.socketDescriptor));
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
    QCOMPARE(pair.arrived(), QByteArray("abcd"));
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
    PairedSession pair;
    pair.closeTest();
    QCOMPARE(pair.session.send("abc", 3), -1);
    QCOMPARE(errno, EPIPE);
    QVERIFY(!support::thisThreadBlocksPipeSignal());
}

void HTTPSessionTest::sendLeavesThePipeSignalAsItWas()
{
    sigset_t pipeSignal;
    ::sigemptyset(&pipeSignal);
    ::sigaddset(&pipeSignal, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
    ::raise(SIGPIPE);
    PairedSession pair;
    pair.closeTest();
    QCOMPARE(pair.session.send("abc", 3), -1);
    sigset_t pending;
    ::sigpending(&pending);
    const bool isPending = ::sigismember(&pending, SIGPIPE) == 1;
    const bool isBlocked = support::thisThreadBlocksPipeSignal();
    const timespec atOnce{};
    ::sigtimedwait(&pipeSignal, nullptr, &atOnce);
    ::pthread_sigmask(SIG_UNBLOCK, &pipeSignal, nullptr);
    QVERIFY(isPending);
    QVERIFY(isBlocked);
}

void HTTPSessionTest::readReturnsWhatHasArrivedUpToTheLength()
{
    PairedSession pair;
    QVERIFY(pair.send("abcdef"));
    char buffer[10] = {};
    QCOMPARE(pair.session.read(buffer, 4), 4);
    QCOMPARE(QByteArray(buffer), QByteArray("abcd"));
    QCOMPARE(pair.session.read(buffer, 4), 2);
    QCOMPARE(QByteArray(buffer), QByteArray("efcd"));
    pair.closeTest();
    QCOMPARE(pair.session.read(buffer, 4), 0);
}

void HTTPSessionTest::callsWithoutASocketFail()
{
    HTTPSession session;
    char byte = 0;
    QCOMPARE(session.send("abc", 3), -1);
    QCOMPARE(session.read(&byte, 1), -1);
    std::string text;
    QCOMPARE(session.readLine(text, 1024), -1);
    text = "old";
    QCOMPARE(session.readLimit(text, 3000), 0);
    QCOMPARE(text, std::string());
}

void HTTPSessionTest::lineIsReceivedByteByByte()
{
    // On a packet socket, a receive discards the rest of the packet.
    PairedSession pair(SOCK_SEQPACKET);
    for (const char* packet : {"axxx", "bxxx", "\nxxx"}) {
        QVERIFY(pair.send(packet));
    }
    std::string line;
    QCOMPARE(pair.session.readLine(line, 0), 3);
    QCOMPARE(line, std::string("ab\n"));
}

void HTTPSessionTest::lineAfterAnErrorWithoutAByteIsMinusOne()
{
    PairedSession pair;
    pair.failInsteadOfWaiting();
    std::string line = "old";
    QCOMPARE(pair.session.readLine(line, 1024), -1);
    QCOMPARE(line, std::string());
}

void HTTPSessionTest::blockIsReceivedInPiecesOfAtMost1024Bytes()
{
    // On a packet socket, a receive discards the rest of the packet.
    PairedSession pair(SOCK_SEQPACKET);
    for (const char filler : {'a', 'b', 'c'}) {
        QVERIFY(pair.send(QByteArray(3000, filler)));
    }
    QVERIFY(pair.send("left"));
    std::string data;
    QCOMPARE(pair.session.readLimit(data, 3000), 3000);
    QCOMPARE(data, std::string(1024, 'a') + std::string(1024, 'b') + std::string(952, 'c'));
    QCOMPARE(pair.session.readLimit(data, 4), 4);
    QCOMPARE(data, std::string("left"));
}

void HTTPSessionTest::hugeBlockReservesNoMemory()
{
    PairedSession pair;
    QVERIFY(pair.send("abc"));
    pair.closeTest();
    std::string data;
    QCOMPARE(pair.session.readLimit(data, INT_MAX), 3);
    QCOMPARE(data, std::string("abc"));
    QVERIFY2(data.capacity() < 10000, qPrintable(QString::number(data.capacity())));
}

BELUN_NETWORK_TEST(HTTPSessionTest)
#include "HTTPSessionTest.moc"
