// One exchange: how each kind of end is recognised, and the time limit.
#include "verify/Camera.h"

#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/TestMain.h"

#include <atomic>

#include <QElapsedTimer>

using support::Peer;
using support::ScriptedServer;
using verify::Camera;
using verify::CameraError;
using verify::Trouble;

Q_DECLARE_METATYPE(Trouble)
Q_DECLARE_METATYPE(ScriptedServer::Script)

namespace {

constexpr auto shortTimeout = std::chrono::seconds(1);
const QByteArray request = "GET / HTTP/1.1\r\n\r\n";

CameraError exchange(const Camera& camera, std::string* body = nullptr,
                     Camera::Kind kind = Camera::Kind::Command)
{
    return camera.get(request, kind, 1000,
                      {[](std::optional<std::uint64_t>) { return true; },
                       [body](std::string_view bytes) {
                           if (body != nullptr) {
                               body->append(bytes);
                           }
                           return true;
                       }});
}

ScriptedServer::Script answering(const QByteArray& bytes)
{
    return [bytes](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(bytes);
        peer.close();
    };
}

ScriptedServer::Script holding(const QByteArray& bytes)
{
    return [bytes](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(bytes);
        peer.holdOpen();
    };
}

} // namespace

class CameraTest : public QObject
{
    Q_OBJECT

private slots:
    void everyEndHasItsTrouble_data();
    void everyEndHasItsTrouble();
    void nobodyListensIsRefused();
    void nobodyAnswersWithinTheTimeout();
    void noRouteSaysWhatTheSystemSays();
    void silenceEndsAfterTheTimeout();
    void tricklingHeadEndsAfterFourTimeouts();
    void slowBodyMayTrickle();
    void wholeAnswerNeedsNoClose();
    void recordingEndsWhereItsHeadSays_data();
    void recordingEndsWhereItsHeadSays();
    void connectionIsClosedAfterTheAnswer();
};

void CameraTest::everyEndHasItsTrouble_data()
{
    QTest::addColumn<ScriptedServer::Script>("script");
    QTest::addColumn<Trouble>("trouble");
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n";
    const auto row = [](const char* tag, const ScriptedServer::Script& script, Trouble trouble) {
        QTest::newRow(tag) << script << trouble;
    };
    row("whole", answering(head + "hello"), Trouble::None);
    row("closed without an answer", answering({}), Trouble::Closed);
    row("closed in the head", answering(head.left(20)), Trouble::Closed);
    row("closed in the body", answering(head + "hel"), Trouble::Closed);
    row(
        "reset",
        [](Peer& peer) {
            peer.receiveUntil("\r\n\r\n");
            peer.reset();
        },
        Trouble::Closed);
    row("noise", answering(QByteArray(4096, '\xff') + "\n"), Trouble::NotUnderstood);
    row("error status", answering("HTTP/1.1 500 Error\r\n\r\n"), Trouble::Status);
    row("unending head", answering("HTTP/1.1 200 OK\r\nX: " + QByteArray(70000, 'x')),
        Trouble::TooLong);
    row("long body", answering("HTTP/1.1 200 OK\r\nContent-Length: 1001\r\n\r\n"),
        Trouble::TooLong);
    row("unending body", answering("HTTP/1.1 200 OK\r\n\r\n" + QByteArray(2000, 'x')),
        Trouble::TooLong);
    row("silent", holding({}), Trouble::Silent);
    row("silent in the body", holding(head + "hel"), Trouble::Silent);
}

void CameraTest::everyEndHasItsTrouble()
{
    QFETCH(ScriptedServer::Script, script);
    ScriptedServer server(script);
    const Camera camera(server.address(), server.port(), shortTimeout);
    QTEST(exchange(camera).trouble, "trouble");
}

void CameraTest::nobodyListensIsRefused()
{
    ScriptedServer server(answering({}));
    server.stop();
    const CameraError error = exchange(Camera(server.address(), server.port(), shortTimeout));
    QCOMPARE(error.trouble, Trouble::Refused);
    QVERIFY(error.isLasting());
}

void CameraTest::nobodyAnswersWithinTheTimeout()
{
    const support::SilentAddress silent("127.0.0.1", 0);
    QElapsedTimer clock;
    clock.start();
    const CameraError error = exchange(Camera("127.0.0.1", silent.port(), shortTimeout));
    QCOMPARE(error.trouble, Trouble::NoConnection);
    QVERIFY2(clock.elapsed() >= 900, qPrintable(QString::number(clock.elapsed())));
}

void CameraTest::noRouteSaysWhatTheSystemSays()
{
    const CameraError error = exchange(Camera("255.255.255.255", 80, shortTimeout));
    QCOMPARE(error.trouble, Trouble::NoRoute);
    QVERIFY(!error.systemText.isEmpty());
    QVERIFY(error.isLasting());
}

void CameraTest::silenceEndsAfterTheTimeout()
{
    ScriptedServer server(holding("HTTP/1.1 200 OK\r\n"));
    QElapsedTimer clock;
    clock.start();
    const CameraError error = exchange(Camera(server.address(), server.port(), shortTimeout));
    QCOMPARE(error.trouble, Trouble::Silent);
    QVERIFY(error.isLasting());
    QVERIFY2(clock.elapsed() >= 900, qPrintable(QString::number(clock.elapsed())));
}

/// Returns a script that sends `start`, then `limit` single bytes with a pause before each, and
/// closes.
ScriptedServer::Script trickling(const QByteArray& start, int limit)
{
    return [start, limit](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(start);
        for (int i = 0; i < limit; ++i) {
            QElapsedTimer pause;
            pause.start();
            peer.waitUntil([&pause] { return pause.hasExpired(300); });
            peer.send("x");
        }
        peer.close();
    };
}

void CameraTest::tricklingHeadEndsAfterFourTimeouts()
{
    ScriptedServer server(trickling("HTTP/1.1 200 OK\r\nX: ", 100));
    QElapsedTimer clock;
    clock.start();
    const CameraError error = exchange(Camera(server.address(), server.port(), shortTimeout));
    QCOMPARE(error.trouble, Trouble::TooSlow);
    QVERIFY2(clock.elapsed() >= 3900, qPrintable(QString::number(clock.elapsed())));
    server.stop();
    server.errors();
}

void CameraTest::slowBodyMayTrickle()
{
    ScriptedServer server(trickling("HTTP/1.1 200 OK\r\nContent-Length: 16\r\n\r\n", 16));
    const Camera camera(server.address(), server.port(), shortTimeout);
    std::string body;
    const CameraError error = exchange(camera, &body, Camera::Kind::Recording);
    QCOMPARE(error.trouble, Trouble::None);
    QCOMPARE(body, std::string(16, 'x'));
}

void CameraTest::wholeAnswerNeedsNoClose()
{
    ScriptedServer server(holding("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"));
    std::string body;
    const CameraError error =
        exchange(Camera(server.address(), server.port(), shortTimeout), &body);
    QCOMPARE(error.trouble, Trouble::None);
    QCOMPARE(body, std::string("hello"));
}

void CameraTest::recordingEndsWhereItsHeadSays_data()
{
    QTest::addColumn<ScriptedServer::Script>("script");
    QTest::addColumn<Trouble>("trouble");
    const QByteArray answer = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello";
    QTest::newRow("closed") << answering(answer) << Trouble::None;
    QTest::newRow("left open") << holding(answer) << Trouble::None;
    QTest::newRow("more at once") << answering(answer + "x") << Trouble::Surplus;
    QTest::newRow("more after it was read") << ScriptedServer::Script([answer](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(answer);
        peer.waitUntilRead();
        peer.send("x");
        peer.close();
    }) << Trouble::Surplus;
}

void CameraTest::recordingEndsWhereItsHeadSays()
{
    QFETCH(ScriptedServer::Script, script);
    ScriptedServer server(script);
    const Camera camera(server.address(), server.port(), shortTimeout);
    std::string body;
    QTEST(exchange(camera, &body, Camera::Kind::Recording).trouble, "trouble");
    QCOMPARE(body, std::string("hello"));
}

void CameraTest::connectionIsClosedAfterTheAnswer()
{
    std::atomic<bool> closed{false};
    ScriptedServer server([&closed](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        peer.waitUntilClosedByClient();
        closed = true;
    });
    const Camera camera(server.address(), server.port(), shortTimeout);
    QVERIFY(!exchange(camera));
    QVERIFY(server.waitForScripts(1));
    QVERIFY(closed);
}

BELUN_TEST(CameraTest)

#include "CameraTest.moc"
