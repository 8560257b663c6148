// POST exchanges over a connection: post, sendBody, startPost, postData, stopPost. Failures before
// the data is sent are tested in HTTPClient_ExchangeTest.
#include "http/HTTPClient.h"

#include "tests/http/PairedSession.h"
#include "tests/http/SendPlan.h"
#include "tests/http/TcpPlay.h"
#include "tests/http/TcpScene.h"
#include "tests/kit/ConversationRows.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QTest>

using support::Conversation;
using support::Peer;

namespace {

const QByteArray done = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\ndone";
const QByteArray okWithoutLength = "HTTP/1.1 200 OK\r\n\r\nunread";

/// A scene whose request sets no headers.
struct PostScene : TcpScene
{
    explicit PostScene(support::ScriptedServer::Script script, const std::string& path = "/")
        : TcpScene(std::move(script), path)
    {
        request.headers.clear();
    }

    /// Returns the head of the request.
    QByteArray bareHead(const QByteArray& path) const
    {
        return "POST " + path + " HTTP/1.1\r\n" + hostLine() + "\r\n";
    }
};

} // namespace

class HTTPClient_PostTest : public QObject
{
    Q_OBJECT

private slots:
    void bodyIsSentInAsManySendsAsItTakes();
    void failedSendOfTheBodyReturnsFalse();
    void emptyBodySendsNothing();
    void bodyIsLeftAsItWas();

    void postReadsTheAnswerAndCloses_data();
    void postReadsTheAnswerAndCloses();
    void postSendsHeadAndBodyByteForByte();
    void postOfThreeMegabytesIsSentWhole();
    void postMayAppendToWhatItSends();
    void postWhoseBodyCannotBeSentFailsWithoutReadingTheAnswer();

    void startPostSendsTheHeadOnly();
    void postDataIsSentPieceByPiece();
    void postDataToAClosedPeerReturnsFalse();
    void stopPostReadsTheAnswerAndCloses();
    void stopPostOfAClosedPeerCloses();
    void stopPostOfAnUnusedSessionDoesNothing();

    void multipartBodyIsPosted();
};

// --- sendBody ----------------------------------------------------------------------------------

void HTTPClient_PostTest::bodyIsSentInAsManySendsAsItTakes()
{
    PairedSession pair;
    const SendPlan plan({1, 0, 0, 3, 0, 2});
    QVERIFY(HTTPClient().sendBody(pair.session, "abcdefghij"));
    QVERIFY(plan.used());
    QCOMPARE(pair.arrived(), QByteArray("abcdefghij"));
}

void HTTPClient_PostTest::failedSendOfTheBodyReturnsFalse()
{
    PairedSession pair;
    {
        const SendPlan plan({4, -1});
        QVERIFY(!HTTPClient().sendBody(pair.session, "abcdefghij"));
        QVERIFY(plan.used());
    }
    QCOMPARE(pair.arrived(), QByteArray("abcd"));
    pair.closeTest();
    QVERIFY(!HTTPClient().sendBody(pair.session, "a"));
}

void HTTPClient_PostTest::emptyBodySendsNothing()
{
    HTTPSession withoutSocket;
    QVERIFY(HTTPClient().sendBody(withoutSocket, ""));
    QVERIFY(!HTTPClient().sendBody(withoutSocket, "a"));
}

void HTTPClient_PostTest::bodyIsLeftAsItWas()
{
    PairedSession pair;
    const std::string data("a\0\xFF\r\n", 5);
    QVERIFY(HTTPClient().sendBody(pair.session, data));
    QVERIFY(data == std::string("a\0\xFF\r\n", 5));
    QCOMPARE(pair.arrived(), QByteArray("a\0\xFF\r\n", 5));
}

// --- post --------------------------------------------------------------------------------------

void HTTPClient_PostTest::postReadsTheAnswerAndCloses_data()
{
    support::addConversations("http", [](const Conversation& conversation) {
        return conversation.exchanges.front().call.rfind("post ", 0) == 0;
    });
}

void HTTPClient_PostTest::postReadsTheAnswerAndCloses()
{
    QFETCH(Conversation, conversation);
    playOverTcp(conversation);
}

void HTTPClient_PostTest::postSendsHeadAndBodyByteForByte()
{
    TcpScene scene(answering(done, "=2"), "/form?x");
    scene.request.headers = {{"Content-Type", "text/plain"}, {"Content-Length", "7"}};
    QVERIFY(scene.post("a=1&b=2"));
    QCOMPARE(scene.response.statusCode, 200);
    QCOMPARE(scene.body, std::string("done"));
    QCOMPARE(scene.received(), "POST /form?x HTTP/1.1\r\n" + scene.hostLine() +
                                   "Content-Length: 7\r\nContent-Type: text/plain\r\n\r\na=1&b=2");
}

void HTTPClient_PostTest::postOfThreeMegabytesIsSentWhole()
{
    PostScene scene([](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.receiveExactly(3000003);
        peer.send(okWithoutLength);
        peer.waitUntilClosedByClient();
    });
    QVERIFY(scene.post(std::string(3000000, 'x') + "end"));
    QVERIFY(scene.received() == scene.bareHead("/") + QByteArray(3000000, 'x') + "end");
}

void HTTPClient_PostTest::postMayAppendToWhatItSends()
{
    TcpScene scene(answering(done, "data"));
    scene.body = "data";
    QVERIFY(scene.post(scene.body));
    QCOMPARE(scene.body, std::string("datadone"));
}

void HTTPClient_PostTest::postWhoseBodyCannotBeSentFailsWithoutReadingTheAnswer()
{
    PostScene scene(
        [](Peer& peer) {
            peer.send("HTTP/1.1 200 OK\r\n\r\n");
            peer.waitUntilClosedByClient();
        },
        "/p");
    const SendPlan plan({100000, 2, -1});
    QVERIFY(!scene.post("data"));
    QVERIFY(plan.used());
    QCOMPARE(scene.response.statusCode, 0);
    // Closing with an unread answer resets the connection and may drop data in transit.
    const QByteArray received = scene.received();
    QVERIFY2((scene.bareHead("/p") + "da").startsWith(received), received);
}

// --- in steps ----------------------------------------------------------------------------------

void HTTPClient_PostTest::startPostSendsTheHeadOnly()
{
    PostScene scene(receiving(), "/upload");
    QVERIFY(HTTPClient().startPost(scene.session, scene.request));
    QVERIFY(isOpen(scene.session.socketDescriptor));
    QCOMPARE(scene.received(), scene.bareHead("/upload"));
}

void HTTPClient_PostTest::postDataIsSentPieceByPiece()
{
    PostScene scene(answering(okWithoutLength, "third"), "/upload");
    QVERIFY(HTTPClient().startPost(scene.session, scene.request));
    for (const std::string& data :
         {std::string("first"), std::string(), std::string("\0\r\n", 3), std::string("third")}) {
        QVERIFY(HTTPClient().postData(scene.session, data));
    }
    HTTPClient().stopPost(scene.session, scene.response, scene.body);
    QCOMPARE(scene.response.statusCode, 200);
    QCOMPARE(scene.received(),
             scene.bareHead("/upload") + "first" + QByteArray("\0\r\n", 3) + "third");
}

void HTTPClient_PostTest::postDataToAClosedPeerReturnsFalse()
{
    PairedSession pair;
    pair.closeTest();
    QVERIFY(!HTTPClient().postData(pair.session, "data"));
    QVERIFY(HTTPClient().postData(pair.session, ""));
}

void HTTPClient_PostTest::stopPostReadsTheAnswerAndCloses()
{
    TcpScene scene(answering(done, "data"));
    scene.body = "before ";
    QVERIFY(HTTPClient().startPost(scene.session, scene.request));
    QVERIFY(HTTPClient().postData(scene.session, "data"));
    const int descriptor = scene.session.socketDescriptor;
    HTTPClient().stopPost(scene.session, scene.response, scene.body);
    QCOMPARE(scene.response.statusCode, 200);
    QCOMPARE(scene.body, std::string("before done"));
    QCOMPARE(scene.session.socketDescriptor, -1);
    QVERIFY(!isOpen(descriptor));
}

void HTTPClient_PostTest::stopPostOfAClosedPeerCloses()
{
    TcpScene scene([](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(done.chopped(1));
        peer.close();
    });
    QVERIFY(HTTPClient().startPost(scene.session, scene.request));
    HTTPClient().stopPost(scene.session, scene.response, scene.body);
    QCOMPARE(scene.body, std::string("don"));
    QCOMPARE(scene.session.socketDescriptor, -1);
}

void HTTPClient_PostTest::stopPostOfAnUnusedSessionDoesNothing()
{
    HTTPResponse response;
    std::string body = "before";
    HTTPSession session;
    HTTPClient().stopPost(session, response, body);
    QCOMPARE(response.statusCode, 0);
    QCOMPARE(body, std::string("before"));
    QCOMPARE(session.socketDescriptor, -1);
}

void HTTPClient_PostTest::multipartBodyIsPosted()
{
    TcpScene scene(answering(okWithoutLength, "--b--\r\n"));
    scene.request.headers = {{"Content-Type", "multipart/form-data; boundary=b"},
                             {"Content-Length", "33"}};
    HTTPMultipart multipart{"b", {{1, {{{"N", "V"}}, "1"}}, {2, {{}, "2"}}}};
    std::string data;
    HTTPClient().makeMultipartBody(multipart, data);
    QVERIFY(scene.post(data));
    QVERIFY(scene.received().endsWith(
        "\r\nContent-Length: 33\r\nContent-Type: multipart/form-data; boundary=b\r\n\r\n"
        "--b\r\nN: V\r\n\r\n1\r\n--b\r\n\r\n2\r\n--b--\r\n"));
}

BELUN_NETWORK_TEST(HTTPClient_PostTest)
#include "HTTPClient_PostTest.moc"
