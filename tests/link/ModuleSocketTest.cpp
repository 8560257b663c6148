#include "link/ModuleSocket.h"

#include "tests/kit/LogCapture.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/SocketPair.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TcpTable.h"
#include "tests/kit/TestMain.h"
#include "tests/link/Link.h"

#include <array>
#include <atomic>
#include <memory>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QThread>

using support::Peer;
using support::ScriptedServer;

namespace {

constexpr char host[] = "127.0.0.1";
constexpr quint16 closedPort = 5679; // outside the range of ports that the system chooses

/// Returns the first IPv4 socket of this process that neither listens nor is connected, or -1.
int unconnectedSocket()
{
    constexpr int highest = 1000;
    for (int descriptor = 0; descriptor < highest; ++descriptor) {
        int family = 0;
        int listens = 1;
        socklen_t size = sizeof family;
        sockaddr_in peer{};
        socklen_t peerSize = sizeof peer;
        if (::getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &family, &size) == 0 &&
            family == AF_INET &&
            ::getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) == 0 &&
            listens == 0 &&
            ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &peerSize) != 0) {
            return descriptor;
        }
    }
    return -1;
}

/// Returns how many connection attempts were refused so far in this test's private network.
int refusedConnections()
{
    QFile counters(QStringLiteral("/proc/thread-self/net/snmp"));
    QList<QByteArray> names; // the first line of each kind names the counters in the second
    if (counters.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : counters.readAll().split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            if (words.first() == "Tcp:" && !names.isEmpty()) {
                return words.value(names.indexOf("AttemptFails")).toInt();
            }
            if (words.first() == "Tcp:") {
                names = words;
            }
        }
    }
    qFatal("this system does not count refused connections");
}

/// A call of connectToModule() in a separate thread.
class Connecting
{
public:
    explicit Connecting(quint16 port)
        : m_thread(QThread::create(
              [this, port] { descriptor = vehicle::connectToModule(calls, "test", host, port); }))
    {
        m_thread->start();
    }
    ~Connecting()
    {
        stopAndWait();
        calls.keep(descriptor);
    }
    Connecting(const Connecting&) = delete;
    Connecting& operator=(const Connecting&) = delete;

    QThread& thread() { return *m_thread; }
    void stopAndWait()
    {
        calls.stopAndWait([this](unsigned long limit) { return m_thread->wait(limit); });
    }

    sys::StoppableCalls calls;
    std::atomic<int> descriptor{-2};

private:
    std::unique_ptr<QThread> m_thread;
};

} // namespace

class ModuleSocketTest : public QObject
{
    Q_OBJECT

private slots:
    void connectionIsMadeAndLogged();
    void connectingGoesOnUntilTheModuleListens();
    void connectingUsesOneSocketOnly();
    void socketThatIsConnectedAlreadyCountsAsSuccess();
    void stopEndsAConnect_data();
    void stopEndsAConnect();
    void stopBeforeConnectingTriesOnceOnly();
    void localAddressIsWrittenWithItsLength();
    void unknownLocalAddressIsReportedAndReadsAsZeros();
    void frameIsSentInOnePiece();
    void failedSendIsIgnored();
};

void ModuleSocketTest::connectionIsMadeAndLogged()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) { peer.receiveExactly(3); }));
    const support::LogCapture log;
    sys::StoppableCalls calls;
    const int descriptor = vehicle::connectToModule(calls, "some module's", host, server.port());
    calls.keep(descriptor);
    QCOMPARE(::send(descriptor, "abc", 3, MSG_NOSIGNAL), ssize_t{3});
    QVERIFY(server.waitForReceived(0, "abc"));
    QCOMPARE(log.lines(),
             QStringList({"some module's new socket begin", "some module's new socket bind ok",
                          "some module's new socket success"}));
}

void ModuleSocketTest::connectingGoesOnUntilTheModuleListens()
{
    const support::LogCapture log;
    Connecting connecting(closedPort);
    QVERIFY(log.waitFor("test new socket bind ok"));
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) { peer.holdOpen(); }), host,
                          closedPort);
    QVERIFY(server.waitForConnections(1));
    QVERIFY(QTest::qWaitFor([&] { return connecting.descriptor >= 0; }));
    QCOMPARE(log.lines(), QStringList({"test new socket begin", "test new socket bind ok",
                                       "test new socket success"}));
}

void ModuleSocketTest::connectingUsesOneSocketOnly()
{
    const support::LogCapture log;
    const int before = support::openSockets();
    Connecting connecting(closedPort);
    QVERIFY(log.waitFor("test new socket bind ok"));
    const int refused = refusedConnections();
    QVERIFY(QTest::qWaitFor([&] { return refusedConnections() >= refused + 100; }));
    QCOMPARE(support::openSockets(), before + 1);
    QCOMPARE(connecting.descriptor.load(), -2);
}

// The test connects the thread's socket: a socket may already be connected after an interrupted
// connect().
void ModuleSocketTest::socketThatIsConnectedAlreadyCountsAsSuccess()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) { peer.holdOpen(); }));
    const support::LogCapture log;
    Connecting connecting(closedPort);
    QVERIFY(log.waitFor("test new socket bind ok"));
    const int tried = unconnectedSocket();
    const sockaddr_in listening = support::socketAddress(host, server.port());
    QVERIFY(QTest::qWaitFor([&] {
        return ::connect(tried, reinterpret_cast<const sockaddr*>(&listening), sizeof listening) ==
               0;
    }));
    QVERIFY2(QTest::qWaitFor([&] { return connecting.descriptor == tried; }),
             "still trying to connect");
    QCOMPARE(log.count("test new socket success"), 1);
}

void ModuleSocketTest::stopEndsAConnect_data()
{
    QTest::addColumn<bool>("silent");
    QTest::newRow("to a refusing address") << false;
    QTest::newRow("to a silent address") << true;
}

void ModuleSocketTest::stopEndsAConnect()
{
    QFETCH(bool, silent);
    const support::LogCapture log;
    std::unique_ptr<support::SilentAddress> address;
    if (silent) {
        address = std::make_unique<support::SilentAddress>(host, closedPort);
    }
    Connecting connecting(closedPort);
    QVERIFY(log.waitFor("test new socket bind ok"));
    QElapsedTimer time;
    time.start();
    connecting.stopAndWait();
    QVERIFY2(time.elapsed() < stopLimit, qPrintable(QString::number(time.elapsed()) + " ms"));
    QVERIFY(connecting.thread().isFinished());
    QVERIFY(connecting.calls.stopRequested());
    QCOMPARE(log.count("test new socket success"), 0);
}

void ModuleSocketTest::stopBeforeConnectingTriesOnceOnly()
{
    const support::LogCapture log;
    sys::StoppableCalls calls;
    QVERIFY(!calls.stopRequested());
    calls.requestStop();
    calls.keep(vehicle::connectToModule(calls, "test", host, closedPort));
    QCOMPARE(log.lines(), QStringList({"test new socket begin", "test new socket bind ok"}));
}

void ModuleSocketTest::localAddressIsWrittenWithItsLength()
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM, 0);
    const sockaddr_in own = support::socketAddress(host, 0);
    QCOMPARE(::bind(descriptor, reinterpret_cast<const sockaddr*>(&own), sizeof own), 0);
    std::array<char, 16> text;
    text.fill('x');
    QCOMPARE(vehicle::localAddress(descriptor, text.data()), 9);
    ::close(descriptor);
    QCOMPARE(QByteArray(text.data(), 16), QByteArray("127.0.0.1\0xxxxxx", 16));
}

void ModuleSocketTest::unknownLocalAddressIsReportedAndReadsAsZeros()
{
    std::array<char, 16> text{};
    QByteArray printed;
    int length = 0;
    {
        const support::StdoutCapture output;
        length = vehicle::localAddress(-1, text.data());
        printed = output.text();
    }
    QCOMPARE(printed, QByteArray("Get IP failed\n"));
    QCOMPARE(length, 7);
    QCOMPARE(QByteArray(text.data()), QByteArray("0.0.0.0"));
}

void ModuleSocketTest::frameIsSentInOnePiece()
{
    const support::SocketPair pair;
    vehicle::sendFrame(pair.product, 0x04, 0x01);
    QCOMPARE(pair.arrived().toHex(), QByteArray("aaaf0401015f"));
    vehicle::sendFrame(pair.product, static_cast<char>(0x90), 0x7F);
    QCOMPARE(pair.arrived().toHex(), QByteArray("aaaf90017f69"));
}

void ModuleSocketTest::failedSendIsIgnored()
{
    support::SocketPair pair;
    pair.closeTest();
    vehicle::sendFrame(pair.product, 0x04, 0x01);
    vehicle::sendFrame(-1, 0x04, 0x01);
}

BELUN_TEST(ModuleSocketTest)
#include "ModuleSocketTest.moc"
