// Tests one exchange with the camera: every way in which it can end, and the time limits.
#include "verify/Camera.h"

#include "tests/kit/Rows.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/TestMain.h"

#include <QElapsedTimer>

using support::Peer;
using support::ScriptedServer;
using verify::Camera;
using verify::CameraError;
using verify::Trouble;

Q_DECLARE_METATYPE(Trouble)
Q_DECLARE_METATYPE(ScriptedServer::Script)
Q_DECLARE_METATYPE(Camera::Kind)

namespace {

// The short one only where a timeout is tested: a busy machine may delay the camera in any test.
constexpr std::chrono::seconds shortTimeout(2);
constexpr std::chrono::seconds longTimeout(30);
const QByteArray request = "GET / HTTP/1.1\r\n\r\n";
const QByteArray hello = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello";

/// Returns a script that receives the request, sends the bytes and then runs `andThen`.
ScriptedServer::Script answering(const QByteArray& bytes,
                                 const ScriptedServer::Script& andThen = &Peer::close)
{
    return [bytes, andThen](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(bytes);
        andThen(peer);
    };
}

ScriptedServer::Script holding(const QByteArray& bytes)
{
    return answering(bytes, &Peer::holdOpen);
}

/// Returns a script that receives the request, sends `start`, then `limit` single bytes with a
/// pause before each, and closes the connection.
ScriptedServer::Script trickling(const QByteArray& start, int limit)
{
    return answering(start, [limit](Peer& peer) {
        for (int i = 0; i < limit; ++i) {
            QElapsedTimer pause;
            pause.start();
            peer.waitUntil([&pause] { return pause.hasExpired(100); });
            peer.send("x");
        }
        peer.close();
    });
}

/// One exchange with a camera at this address.
struct Exchange
{
    Exchange(const QByteArray& address, quint16 port, std::chrono::seconds timeout,
             Camera::Kind kind = Camera::Kind::Command)
    {
        QElapsedTimer clock;
        clock.start();
        error = Camera(address, port, timeout)
                    .get(request, kind, 1000,
                         {[](std::optional<std::uint64_t>) { return true; },
                          [this](std::string_view bytes) {
                              body.append(bytes);
                              return true;
                          }});
        milliseconds = clock.elapsed();
    }
    explicit Exchange(const ScriptedServer& server, std::chrono::seconds timeout = longTimeout,
                      Camera::Kind kind = Camera::Kind::Command)
        : Exchange(server.address(), server.port(), timeout, kind)
    {
    }

    std::string body;
    CameraError error;
    qint64 milliseconds = 0;
};

} // namespace

class CameraTest : public QObject
{
    Q_OBJECT

private slots:
    void everyEndHasItsTrouble_data();
    void everyEndHasItsTrouble();
    void slowBodyMayTakeMoreThanFourTimeouts();
    void bytesSoonAfterTheBodyAreSurplus();
    void nobodyListensIsRefused();
    void nobodyAnswersWithinTheTimeout();
    void noRouteSaysWhatTheSystemSays();
    void silenceEndsAfterTheTimeout();
    void tricklingHeadEndsAfterFourTimeouts();
    void connectionIsClosedAfterTheAnswer();
};

void CameraTest::everyEndHasItsTrouble_data()
{
    using Kind = Camera::Kind;
    const support::Rows<ScriptedServer::Script, Kind, Trouble, QByteArray> rows("script", "kind",
                                                                                "trouble", "body");
    const auto row = [&rows](const char* tag, const ScriptedServer::Script& script, Trouble trouble,
                             const QByteArray& body = {},
                             Kind kind = Kind::Command) { rows(tag, script, kind, trouble, body); };
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    row("whole", answering(hello), Trouble::None, "hello");
    row("whole without a close", holding(hello), Trouble::None, "hello");
    row("empty without a close", holding(ok + "Content-Length: 0\r\n\r\n"), Trouble::None);
    row("closed without an answer", answering({}), Trouble::Closed);
    row("closed in the head", answering(hello.left(20)), Trouble::Closed);
    row("closed in the body", answering(hello.chopped(2)), Trouble::Closed, "hel");
    row("reset", answering({}, &Peer::reset), Trouble::Closed);
    row("noise", answering(QByteArray(4096, '\xff') + "\n"), Trouble::NotUnderstood);
    row("error status", answering("HTTP/1.1 500 Error\r\n\r\n"), Trouble::Status);
    row("unending head", answering(ok + "X: " + QByteArray(70000, 'x')), Trouble::TooLong);
    row("long body", answering(ok + "Content-Length: 1001\r\n\r\n"), Trouble::TooLong);
    row("unending body", answering(ok + "\r\n" + QByteArray(2000, 'x')), Trouble::TooLong);
    row("silent", holding({}), Trouble::Silent);
    row("silent in the body", holding(hello.chopped(2)), Trouble::Silent, "hel");

    // A recording ends after the announced length. Further bytes are an error.
    row("recording", answering(hello), Trouble::None, "hello", Kind::Recording);
    row("recording, left open", holding(hello), Trouble::None, "hello", Kind::Recording);
    row("more at once", answering(hello + "x"), Trouble::Surplus, "hello", Kind::Recording);
}

void CameraTest::everyEndHasItsTrouble()
{
    QFETCH(ScriptedServer::Script, script);
    QFETCH(Camera::Kind, kind);
    QFETCH(Trouble, trouble);
    const ScriptedServer server(script);
    const Exchange exchange(server, trouble == Trouble::Silent ? shortTimeout : longTimeout, kind);
    QCOMPARE(exchange.error.trouble, trouble);
    // If the body is too long, the part that is passed on depends on the sizes of the receives.
    if (exchange.error.trouble != Trouble::TooLong) {
        QTEST(QByteArray::fromStdString(exchange.body), "body");
    }
}

void CameraTest::slowBodyMayTakeMoreThanFourTimeouts()
{
    const int count = 85;
    const ScriptedServer server(trickling("HTTP/1.1 200 OK\r\nContent-Length: 85\r\n\r\n", count));
    const Exchange exchange(server, shortTimeout, Camera::Kind::Recording);
    QCOMPARE(exchange.error.trouble, Trouble::None);
    QCOMPARE(QByteArray::fromStdString(exchange.body), QByteArray(count, 'x'));
    QVERIFY2(exchange.milliseconds >= 8000, QByteArray::number(exchange.milliseconds));
}

void CameraTest::bytesSoonAfterTheBodyAreSurplus()
{
    const ScriptedServer server(answering(hello, [](Peer& peer) {
        peer.waitUntilRead();
        QElapsedTimer pause;
        pause.start();
        peer.waitUntil([&pause] { return pause.hasExpired(20); });
        peer.send("x");
        peer.close();
    }));
    // The exchange waits a fifth of a second for more; a busy machine may send later.
    Trouble trouble = Trouble::None;
    for (int attempt = 0; attempt < 5 && trouble == Trouble::None; ++attempt) {
        const Exchange exchange(server, longTimeout, Camera::Kind::Recording);
        QCOMPARE(exchange.body, std::string("hello"));
        trouble = exchange.error.trouble;
    }
    QCOMPARE(trouble, Trouble::Surplus);
}

void CameraTest::nobodyListensIsRefused()
{
    ScriptedServer server(answering({}));
    server.stop();
    const Exchange exchange(server);
    QCOMPARE(exchange.error.trouble, Trouble::Refused);
    QVERIFY(exchange.error.isLasting());
}

void CameraTest::nobodyAnswersWithinTheTimeout()
{
    const support::SilentAddress silent("127.0.0.1", 0);
    const Exchange exchange("127.0.0.1", silent.port(), shortTimeout);
    QCOMPARE(exchange.error.trouble, Trouble::NoConnection);
    QVERIFY2(exchange.milliseconds >= 1900, QByteArray::number(exchange.milliseconds));
}

void CameraTest::noRouteSaysWhatTheSystemSays()
{
    const Exchange exchange("255.255.255.255", 80, longTimeout);
    QCOMPARE(exchange.error.trouble, Trouble::NoRoute);
    QVERIFY(!exchange.error.systemText.isEmpty());
    QVERIFY(exchange.error.isLasting());
}

void CameraTest::silenceEndsAfterTheTimeout()
{
    const ScriptedServer server(holding("HTTP/1.1 200 OK\r\n"));
    const Exchange exchange(server, shortTimeout);
    QCOMPARE(exchange.error.trouble, Trouble::Silent);
    QVERIFY(exchange.error.isLasting());
    QVERIFY2(exchange.milliseconds >= 1900, QByteArray::number(exchange.milliseconds));
}

void CameraTest::tricklingHeadEndsAfterFourTimeouts()
{
    ScriptedServer server(trickling("HTTP/1.1 200 OK\r\nX: ", 1000));
    const Exchange exchange(server, shortTimeout);
    QCOMPARE(exchange.error.trouble, Trouble::TooSlow);
    QVERIFY2(exchange.milliseconds >= 7900, QByteArray::number(exchange.milliseconds));
    server.stop();
    server.errors();
}

void CameraTest::connectionIsClosedAfterTheAnswer()
{
    const ScriptedServer server(answering(hello, &Peer::waitUntilClosedByClient));
    QVERIFY(!Exchange(server).error);
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.errors(), QStringList());
}

BELUN_TEST(CameraTest)

#include "CameraTest.moc"
