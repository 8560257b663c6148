// GET exchanges over a connection: sendHeader, get, startGet, getData, stopGet; and how any call
// that begins an exchange fails.
#include "http/HTTPClient.h"

#include "tests/http/SendPlan.h"
#include "tests/http/TcpPlay.h"
#include "tests/http/TcpScene.h"
#include "tests/kit/ConversationRows.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QTest>

using support::Conversation;
using support::Exchange;
using support::Peer;
using support::ScriptedServer;

namespace {

bool isOfGet(const Conversation& conversation)
{
    return conversation.exchanges.front().call.rfind("get ", 0) == 0;
}

/// Parses the URL of the scene's request and sends the head. Returns false if either fails.
bool sendHead(TcpScene& scene, HTTP_REQ_TYPE type)
{
    HTTPClient client;
    return client.parseUrl(scene.request) && client.sendHeader(type, scene.session, scene.request);
}

/// A call that begins an exchange.
struct Call
{
    const char* name;
    bool (*make)(TcpScene&);
    bool leavesSessionOpen;
};

const Call calls[] = {
    {"get", [](TcpScene& scene) { return scene.get(); }, false},
    {"post", [](TcpScene& scene) { return scene.post("data"); }, false},
    {"startGet",
     [](TcpScene& scene) {
         return HTTPClient().startGet(scene.session, scene.response, scene.request);
     },
     true},
    {"startPost",
     [](TcpScene& scene) { return HTTPClient().startPost(scene.session, scene.request); }, true},
};

const QByteArray hello = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello";

} // namespace

class HTTPClient_ExchangeTest : public QObject
{
    Q_OBJECT

private slots:
    void headReachesTheServerByteForByte();
    void headOfAnUnknownMethodBeginsWithASpace();
    void lowSixteenBitsOfThePortAreUsed();
    void hostWithoutAddressIsStillConnectedTo();
    void invalidDottedHostIsStillConnectedTo();
    void failedSendLeavesTheSocketOpen();
    void headIsSentInAsManySendsAsItTakes();
    void headOfAMegabyteIsSentWhole();

    void anotherSchemeOpensNoSocket();
    void refusedConnectionFails();
    void headThatCannotBeSentFails();

    void getReadsTheAnswerAndCloses_data() { support::addConversations("http", isOfGet); }
    void getReadsTheAnswerAndCloses();
    void getReadsAnAnswerThatComesByteByByte_data();
    void getReadsAnAnswerThatComesByteByByte();
    void getOfAServerThatClosesEarlyFailsWithWhatArrived_data();
    void getOfAServerThatClosesEarlyFailsWithWhatArrived();
    void getOfTheRootOverPort80();
    void getMayAppendToTheAddress();
    void getOfAServerThatResetsInsideTheBodyFails();
    void portAndPathOfAnEarlierAddressStay();

    void startGetReadsTheHeadOnly();
    void getDataReadsTheBodyAndStopGetCloses();
    void startGetOnAConnectedSessionFails();
    void getDataOfAClosedPeerReturnsFalse();
    void stopGetOfAnUnusedSessionDoesNothing();
};

// --- sendHeader --------------------------------------------------------------------------------

void HTTPClient_ExchangeTest::headReachesTheServerByteForByte()
{
    TcpScene scene(receiving(), "/a b?c=\xE4");
    scene.request.headers = {{"B", "2"}, {"A", "1"}};
    QVERIFY(sendHead(scene, HTTP_REQ_DELETE));
    QCOMPARE(scene.received(),
             "DELETE /a b?c=\xE4 HTTP/1.1\r\n" + scene.hostLine() + "A: 1\r\nB: 2\r\n\r\n");
}

void HTTPClient_ExchangeTest::headOfAnUnknownMethodBeginsWithASpace()
{
    TcpScene scene(receiving());
    scene.request.headers.clear();
    QVERIFY(sendHead(scene, static_cast<HTTP_REQ_TYPE>(9)));
    QCOMPARE(scene.received(), " / HTTP/1.1\r\n" + scene.hostLine() + "\r\n");
}

void HTTPClient_ExchangeTest::lowSixteenBitsOfThePortAreUsed()
{
    TcpScene scene(receiving());
    const std::string host = "127.0.0.1:" + std::to_string(scene.server.port() + 0x30000);
    scene.request.url = "http://" + host;
    QVERIFY(sendHead(scene, HTTP_REQ_GET));
    QVERIFY(scene.received().contains(("Host: " + host + "\r\n").c_str()));
}

void HTTPClient_ExchangeTest::hostWithoutAddressIsStillConnectedTo()
{
    // The name cannot be resolved, so the client connects to the address 0, which is this computer.
    TcpScene scene(answering(hello));
    scene.request.url = "http://my_host:" + std::to_string(scene.server.port());
    QVERIFY(scene.get());
    QCOMPARE(scene.body, std::string("hello"));
    QVERIFY(scene.received().contains("\r\nHost: my_host:"));
}

void HTTPClient_ExchangeTest::invalidDottedHostIsStillConnectedTo()
{
    // inet_addr() returns INADDR_NONE for this host. That is the broadcast address, and a
    // connection to it fails.
    TcpScene scene(receiving());
    scene.request.url = "http://1.2.3.4.5";
    QVERIFY(!sendHead(scene, HTTP_REQ_GET));
    QVERIFY(isOpen(scene.session.socketDescriptor));
}

void HTTPClient_ExchangeTest::failedSendLeavesTheSocketOpen()
{
    TcpScene scene(receiving());
    const SendPlan plan({3, -1});
    QVERIFY(!sendHead(scene, HTTP_REQ_GET));
    QVERIFY(plan.used());
    QVERIFY(isOpen(scene.session.socketDescriptor));
    QCOMPARE(scene.received(), QByteArray("GET"));
}

void HTTPClient_ExchangeTest::headIsSentInAsManySendsAsItTakes()
{
    TcpScene scene(receiving(), "/p");
    const SendPlan plan({1, 2, 0, 3, 0, 0, 10, 1});
    QVERIFY(sendHead(scene, HTTP_REQ_GET));
    QVERIFY(plan.used());
    QCOMPARE(scene.received(), scene.defaultHead("GET /p"));
}

void HTTPClient_ExchangeTest::headOfAMegabyteIsSentWhole()
{
    TcpScene scene(receiving());
    scene.request.headers = {{"A", std::string(1000000, 'x')}};
    QVERIFY(sendHead(scene, HTTP_REQ_GET));
    QVERIFY(scene.received().endsWith("\r\nA: " + QByteArray(1000000, 'x') + "\r\n\r\n"));
}

// --- any call ----------------------------------------------------------------------------------

void HTTPClient_ExchangeTest::anotherSchemeOpensNoSocket()
{
    TcpScene scene(receiving());
    scene.request.host = "127.0.0.1";
    scene.request.port = scene.server.port();
    scene.body = "before";
    for (const Call& call : calls) {
        for (const char* url : {"https://127.0.0.1/p", "HTTP://127.0.0.1/p", "ftp://127.0.0.1/p",
                                "127.0.0.1/p", "http://", "http://127.0.0.1/a:b", ""}) {
            scene.request.url = url;
            QVERIFY2(!call.make(scene), call.name);
            QCOMPARE(scene.session.socketDescriptor, -1);
        }
    }
    QCOMPARE(scene.body, std::string("before"));
    QCOMPARE(scene.server.connectionCount(), 0);
}

void HTTPClient_ExchangeTest::refusedConnectionFails()
{
    for (const Call& call : calls) {
        TcpScene scene(receiving());
        scene.request.url = "http://127.0.0.1:" + std::to_string(refusingPort());
        scene.body = "before";
        const int before = support::openDescriptors();
        QVERIFY2(!call.make(scene), call.name);
        QCOMPARE(isOpen(scene.session.socketDescriptor), call.leavesSessionOpen);
        QCOMPARE(support::openDescriptors(), before + (call.leavesSessionOpen ? 1 : 0));
        QCOMPARE(scene.response.statusCode, 0);
        QCOMPARE(scene.body, std::string("before"));
        HTTPClient().stopGet(scene.session);
        QCOMPARE(support::openDescriptors(), before);
    }
}

void HTTPClient_ExchangeTest::headThatCannotBeSentFails()
{
    for (const Call& call : calls) {
        TcpScene scene(receiving());
        const SendPlan plan({-1});
        QVERIFY2(!call.make(scene), call.name);
        QCOMPARE(isOpen(scene.session.socketDescriptor), call.leavesSessionOpen);
        QCOMPARE(scene.received(), QByteArray());
    }
}

// --- get ---------------------------------------------------------------------------------------

void HTTPClient_ExchangeTest::getReadsTheAnswerAndCloses()
{
    QFETCH(Conversation, conversation);
    playOverTcp(conversation);
}

void HTTPClient_ExchangeTest::getReadsAnAnswerThatComesByteByByte_data()
{
    support::addConversations("http", [](const Conversation& conversation) {
        const Exchange& exchange = conversation.exchanges.front();
        return isOfGet(conversation) && conversation.mayEndAnywhere() && !exchange.peerCloses &&
               exchange.unread.empty();
    });
}

void HTTPClient_ExchangeTest::getReadsAnAnswerThatComesByteByByte()
{
    QFETCH(Conversation, conversation);
    playOverTcp(conversation, sendBytewise);
}

void HTTPClient_ExchangeTest::getOfAServerThatClosesEarlyFailsWithWhatArrived_data()
{
    support::addConversations("http", [](const Conversation& conversation) {
        return isOfGet(conversation) && conversation.mayEndAnywhere();
    });
}

void HTTPClient_ExchangeTest::getOfAServerThatClosesEarlyFailsWithWhatArrived()
{
    QFETCH(Conversation, conversation);
    const Exchange whole = conversation.exchanges.front();
    Exchange& exchange = conversation.exchanges.front();
    exchange.pieces.clear();
    exchange.peerCloses = true;
    exchange.result = whole.closedAtStart;
    for (const support::Piece& piece : whole.pieces) {
        playOverTcp(conversation);
        if (QTest::currentTestFailed()) {
            qInfo("closed before \"%s\"", support::printable(piece.bytes).c_str());
            return;
        }
        exchange.pieces.push_back(piece);
        exchange.result = piece.closed;
    }
}

void HTTPClient_ExchangeTest::getOfTheRootOverPort80()
{
    ScriptedServer server(answering(hello), "192.168.1.120", 80);
    HTTPRequest request;
    request.url = "http://192.168.1.120";
    HTTPResponse response;
    std::string body;
    QVERIFY(HTTPClient().get(request, response, body));
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0), QByteArray("GET / HTTP/1.1\r\nHost: 192.168.1.120\r\n"
                                            "Accept: */*\r\nAccept-Language: zh-CN\r\n"
                                            "Connection: Keep-Alive\r\n"
                                            "User-Agent: SDK C++ http client\r\n\r\n"));
}

void HTTPClient_ExchangeTest::getMayAppendToTheAddress()
{
    TcpScene scene(answering(hello), "/a");
    const std::string url = scene.request.url;
    QVERIFY(HTTPClient().get(scene.request, scene.response, scene.request.url));
    QCOMPARE(scene.request.url, url + "hello");
    scene.request.url = url;
    QVERIFY(HTTPClient().get(scene.request, scene.response, scene.request.path));
    QCOMPARE(scene.request.path, std::string("/ahello"));
    QVERIFY(scene.server.waitForScripts(2));
    QCOMPARE(scene.server.received(1), scene.defaultHead("GET /a"));
}

void HTTPClient_ExchangeTest::getOfAServerThatResetsInsideTheBodyFails()
{
    TcpScene scene([](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(hello.chopped(2));
        peer.waitUntilRead();
        peer.reset();
    });
    QVERIFY(!scene.get());
    QCOMPARE(scene.body, std::string("hel"));
    QCOMPARE(scene.response.received, 3u);
}

void HTTPClient_ExchangeTest::portAndPathOfAnEarlierAddressStay()
{
    TcpScene scene(answering(hello), "/first");
    QVERIFY(scene.get());
    scene.request.url = "http://127.0.0.1";
    QVERIFY(scene.get());
    QVERIFY(scene.server.waitForScripts(2));
    QCOMPARE(scene.server.received(1), scene.defaultHead("GET /first"));
}

// --- in steps ----------------------------------------------------------------------------------

void HTTPClient_ExchangeTest::startGetReadsTheHeadOnly()
{
    TcpScene scene(answering("HTTP/1.1 206 Partial Content\r\nContent-Length: 5\r\n\r\nhello"),
                   "/p");
    QVERIFY(HTTPClient().startGet(scene.session, scene.response, scene.request));
    QCOMPARE(scene.response.statusCode, 206);
    QCOMPARE(scene.response.contentLength, 5u);
    QCOMPARE(scene.response.received, 0u);
    std::string line;
    QCOMPARE(scene.session.readLine(line, 5), 5);
    QCOMPARE(line, std::string("hello"));
    QCOMPARE(scene.received(), scene.defaultHead("GET /p"));
}

void HTTPClient_ExchangeTest::getDataReadsTheBodyAndStopGetCloses()
{
    TcpScene scene(answering(hello));
    scene.body = "before ";
    QVERIFY(HTTPClient().startGet(scene.session, scene.response, scene.request));
    QVERIFY(HTTPClient().getData(scene.session, scene.response, scene.body));
    QCOMPARE(scene.body, std::string("before hello"));
    const int descriptor = scene.session.socketDescriptor;
    QVERIFY(isOpen(descriptor));
    HTTPClient().stopGet(scene.session);
    QCOMPARE(scene.session.socketDescriptor, -1);
    QVERIFY(!isOpen(descriptor));
}

void HTTPClient_ExchangeTest::startGetOnAConnectedSessionFails()
{
    TcpScene scene(answering(hello));
    QVERIFY(HTTPClient().startGet(scene.session, scene.response, scene.request));
    QVERIFY(!HTTPClient().startGet(scene.session, scene.response, scene.request));
    QVERIFY(HTTPClient().getData(scene.session, scene.response, scene.body));
    QCOMPARE(scene.body, std::string("hello"));
    QCOMPARE(scene.server.connectionCount(), 1);
}

void HTTPClient_ExchangeTest::getDataOfAClosedPeerReturnsFalse()
{
    TcpScene scene([](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(hello.chopped(2));
        peer.close();
    });
    QVERIFY(HTTPClient().startGet(scene.session, scene.response, scene.request));
    QVERIFY(!HTTPClient().getData(scene.session, scene.response, scene.body));
    QVERIFY(!HTTPClient().getData(scene.session, scene.response, scene.body));
    QCOMPARE(scene.body, std::string("hel"));
}

void HTTPClient_ExchangeTest::stopGetOfAnUnusedSessionDoesNothing()
{
    HTTPSession session;
    HTTPClient().stopGet(session);
    QCOMPARE(session.socketDescriptor, -1);
}

BELUN_NETWORK_TEST(HTTPClient_ExchangeTest)
#include "HTTPClient_ExchangeTest.moc"
