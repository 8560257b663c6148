// Tests of the shared test code.
#include "tests/kit/LogCapture.h"
#include "tests/kit/MessageBoxWatcher.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/SocketPair.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TcpTable.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowProbe.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDebug>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardPaths>
#include <QThread>

using support::Peer;
using support::ScriptedServer;

namespace {

/// A plain client of the scripted server.
class Client
{
public:
    explicit Client(quint16 port) : m_descriptor(::socket(AF_INET, SOCK_STREAM, 0))
    {
        const sockaddr_in place = support::socketAddress("127.0.0.1", port);
        connected =
            ::connect(m_descriptor, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
    }
    ~Client() { ::close(m_descriptor); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void send(const QByteArray& bytes) const
    {
        ::send(m_descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()),
               MSG_NOSIGNAL);
    }

    /// Returns the bytes of one receive, "end" or "error".
    QByteArray receive() const
    {
        std::array<char, 100> buffer;
        const ssize_t count = ::recv(m_descriptor, buffer.data(), buffer.size(), 0);
        if (count > 0) {
            return QByteArray(buffer.data(), static_cast<int>(count));
        }
        return count == 0 ? "end" : "error";
    }

    bool connected = false;

private:
    int m_descriptor;
};

} // namespace

class SupportTest : public QObject
{
    Q_OBJECT

private slots:
    void serverKeepsWhatItReceivedPerConnection();
    void serverSendsEachPieceOnItsOwn();
    void serverResetsAndCloses();
    void brokenExpectationIsAnError();
    void connectionWithoutAScriptIsAnError();
    void stopEndsAScriptThatWaits();
    void connectionIsControlledFromOutsideItsScript();
    void silentAddressNeitherAcceptsNorRefuses();
    void logCaptureKeepsTheOrder();
    void stdoutCaptureSeesFlushedTextOnly();
    void homeFolderIsTheTestsOwn();
    void messageBoxesAreAnsweredInOrder();
    void windowProbeReachesChildrenAndSlots();
    void socketPairIsConnected();
};

void SupportTest::serverKeepsWhatItReceivedPerConnection()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) {
        const QByteArray line = peer.receiveUntil("\n");
        peer.send("got " + line);
        peer.waitUntilClosedByClient();
    }));
    {
        const Client first(server.port());
        first.send("one\nrest");
        QCOMPARE(first.receive(), QByteArray("got one\n"));
        const Client second(server.port());
        second.send("two\n");
        QCOMPARE(second.receive(), QByteArray("got two\n"));
    }
    QVERIFY(server.waitForScripts(2));
    QCOMPARE(server.received(0), QByteArray("one\nrest"));
    QCOMPARE(server.received(1), QByteArray("two\n"));
    QCOMPARE(server.errors(), QStringList());
}

void SupportTest::serverSendsEachPieceOnItsOwn()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) {
        peer.sendInPieces("abcdef", {1, 4});
    }));
    const Client client(server.port());
    QCOMPARE(client.receive(), QByteArray("a"));
    QCOMPARE(client.receive(), QByteArray("bcd"));
    QCOMPARE(client.receive(), QByteArray("ef"));
    QCOMPARE(client.receive(), QByteArray("end"));
}

void SupportTest::serverResetsAndCloses()
{
    ScriptedServer server(std::vector<ScriptedServer::Script>{[](Peer& peer) { peer.reset(); },
                                                              [](Peer& peer) { peer.close(); },
                                                              [](Peer& peer) {
                                                                  peer.halfClose();
                                                                  peer.receiveExactly(3);
                                                              }});
    const Client reset(server.port());
    QCOMPARE(reset.receive(), QByteArray("error"));
    const Client closed(server.port());
    QCOMPARE(closed.receive(), QByteArray("end"));
    const Client halfClosed(server.port());
    QCOMPARE(halfClosed.receive(), QByteArray("end"));
    halfClosed.send("abc");
    QVERIFY(server.waitForScripts(3));
    QCOMPARE(server.received(2), QByteArray("abc"));
}

void SupportTest::brokenExpectationIsAnError()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) { peer.receiveExactly(4); }));
    {
        const Client client(server.port());
        client.send("abc");
    }
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.errors(), QStringList("connection 0: closed by the client after 3 of 4 bytes"));
}

void SupportTest::connectionWithoutAScriptIsAnError()
{
    ScriptedServer server(std::vector<ScriptedServer::Script>{});
    const Client client(server.port());
    QCOMPARE(client.receive(), QByteArray("end"));
    QCOMPARE(server.errors(), QStringList("connection 0 has no script"));
}

void SupportTest::stopEndsAScriptThatWaits()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) { peer.receiveExactly(4); }));
    const Client client(server.port());
    QVERIFY(server.waitForConnections(1));
    server.stop();
    QCOMPARE(client.receive(), QByteArray("end"));
    QCOMPARE(server.errors(), QStringList());
    QVERIFY(!Client(server.port()).connected);
}

void SupportTest::connectionIsControlledFromOutsideItsScript()
{
    ScriptedServer server(ScriptedServer::Script([](Peer& peer) { peer.serve(); }));
    const Client first(server.port());
    QCOMPARE(server.connectionCount(), 1); // even before it is accepted
    const Client second(server.port());
    QCOMPARE(server.connectionCount(), 2);
    QCOMPARE(server.openConnections(), (QList<int>{0, 1}));
    QCOMPARE(server.peer(0).trySend("abc"), QString());
    QVERIFY(!server.peer(0).isAllRead());
    QCOMPARE(first.receive(), QByteArray("abc"));
    QTRY_VERIFY(server.peer(0).isAllRead());
    first.send("def");
    QTRY_COMPARE(server.peer(0).received(), QByteArray("def"));
    server.peer(0).wantClose();
    QCOMPARE(first.receive(), QByteArray("end"));
    server.peer(1).wantReset();
    QCOMPARE(second.receive(), QByteArray("error"));
    QTRY_COMPARE(server.openConnections(), QList<int>());
}

void SupportTest::silentAddressNeitherAcceptsNorRefuses()
{
    const support::SilentAddress silent("127.0.0.1", 0);
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    const sockaddr_in place = support::socketAddress("127.0.0.1", silent.port());
    QCOMPARE(::connect(descriptor, reinterpret_cast<const sockaddr*>(&place), sizeof place), -1);
    QCOMPARE(errno, EINPROGRESS);
    pollfd state{descriptor, POLLOUT, 0};
    QCOMPARE(::poll(&state, 1, 200), 0);
    ::close(descriptor);
}

void SupportTest::logCaptureKeepsTheOrder()
{
    const support::LogCapture log;
    qDebug("first");
    const std::unique_ptr<QThread> thread(QThread::create([] { qDebug("second"); }));
    thread->start();
    QVERIFY(log.waitFor("second"));
    thread->wait();
    qDebug() << "third" << 3;
    QCOMPARE(log.lines(), QStringList({"first", "second", "third 3"}));
    QVERIFY(!log.waitFor("second", 2, 10));
}

void SupportTest::stdoutCaptureSeesFlushedTextOnly()
{
    QByteArray before;
    QByteArray after;
    {
        const support::StdoutCapture output;
        qDebug("a debug line is kept out");
        std::fputs("printed\n", stdout);
        before = output.text();
        std::fflush(stdout);
        after = output.text();
    }
    QCOMPARE(before, QByteArray());
    QCOMPARE(after, QByteArray("printed\n"));
}

void SupportTest::homeFolderIsTheTestsOwn()
{
    QVERIFY2(QDir::homePath().startsWith(QDir::tempPath()), qPrintable(QDir::homePath()));
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    QCOMPARE(desktop, QDir::homePath() + "/Desktop");
    QVERIFY(QDir(desktop).exists());
}

void SupportTest::messageBoxesAreAnsweredInOrder()
{
    support::MessageBoxWatcher watcher;
    watcher.answerNext(QMessageBox::Yes);
    watcher.answerNext(QMessageBox::No);
    const auto ask = [] { return QMessageBox::question(nullptr, "Title", "Really?"); };
    QCOMPARE(ask(), QMessageBox::Yes);
    QCOMPARE(ask(), QMessageBox::No);
    QCOMPARE(watcher.boxes().size(), 2);
    QCOMPARE(watcher.boxes().at(0).text, QString("Really?"));
    QCOMPARE(watcher.boxes().at(0).standardButtons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(watcher.boxes().at(0).icon, QMessageBox::Question);
}

void SupportTest::windowProbeReachesChildrenAndSlots()
{
    QWidget window;
    auto* button = new QPushButton(&window);
    button->setObjectName("button");
    int clicks = 0;
    connect(button, &QPushButton::clicked, this, [&clicks] { ++clicks; });
    window.show();
    const support::WindowProbe probe(window);
    QCOMPARE(&probe.child<QPushButton>("button"), button);
    probe.click("button");
    QCOMPARE(clicks, 1);
    probe.call("setDisabled", Q_ARG(bool, true));
    QVERIFY(!window.isEnabled());
    QVERIFY(support::eventually([&] { return !window.isEnabled(); }));
}

void SupportTest::socketPairIsConnected()
{
    support::SocketPair pair;
    QVERIFY(pair.send("abc"));
    char buffer[3];
    QCOMPARE(::recv(pair.product, buffer, sizeof buffer, 0), ssize_t{3});
    QCOMPARE(::send(pair.product, buffer, sizeof buffer, 0), ssize_t{3});
    QCOMPARE(pair.arrived(), QByteArray("abc"));
}

BELUN_TEST(SupportTest)
#include "SupportTest.moc"
