// Complete GET exchanges over a connection: sendHeader, get, startGet, getData, stopGet.
#include "http/HTTPClient.h"

#include "tests/http/SendPlan.h"
#include "tests/http/TcpPlay.h"
#include "tests/kit/ConversationRows.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/TestMain.h"

#include <fcntl.h>

#include <QByteArray>
#include <QDir>
#include <QTest>

using support::Conversation;
using support::Exchange;
using support::Peer;
using support::ScriptedServer;

namespace {

/// Returns a script that receives a request, sends the answer and waits for the client to close.
ScriptedServer::Script answering(const QByteArray& answer)
{
    return [answer](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send(answer);
        peer.waitUntilClosedByClient();
    };
}

HTTPRequest requestTo(const ScriptedServer& server, const std::string& path)
{
    HTTPRequest request;
    request.url = "http://127.0.0.1:" + std::to_string(server.port()) + path;
    return request;
}

bool isOpen(int descriptor)
{
    return ::fcntl(descriptor, F_GETFD) != -1;
}

/// Returns a port without a listener.
int refusingPort()
{
    return ScriptedServer([](Peer&) {}).port();
}

bool isOfGet(const Conversation& conversation)
{
    return conversation.exchanges.front().call.rfind("get ", 0) == 0;
}

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
    void refusedConnectionFailsAndLeavesTheSocketOpen();
    void failedSendLeavesTheSocketOpen();
    void headIsSentInAsManySendsAsItTakes();
    void headOfAMegabyteIsSentWhole();

    void getReadsTheAnswerAndCloses_data() { support::addConversations("http", isOfGet); }
    void getReadsTheAnswerAndCloses();
    void getReadsAnAnswerThatComesByteByByte_data();
    void getReadsAnAnswerThatComesByteByByte();
    void getOfAServerThatClosesEarlyFailsWithWhatArrived_data();
    void getOfAServerThatClosesEarlyFailsWithWhatArrived();
    void getOfTheRootOverPort80();
    void getOfAnotherSchemeOpensNoSocket();
    void getOfARefusedConnectionFails();
    void getWhoseHeadCannotBeSentFails();
    void getClosesItsConnectionAfterAFailure();
    void getMayAppendToTheAddress();
    void getOfAServerThatResetsInsideTheBodyFails();

    void portAndPathOfAnEarlierAddressStay();

    void startGetReadsTheHeadOnly();
    void startGetOfARefusedAddressOpensNoSocket();
    void startGetOfARefusedConnectionLeavesTheSessionOpen();
    void startGetOnAConnectedSessionFails();
    void getDataReadsTheBodyAndStopGetCloses();
    void getDataOfAClosedPeerReturnsFalse();
    void stopGetOfAnUnusedSessionDoesNothing();
};

// --- sendHeader --------------------------------------------------------------------------------

void HTTPClient_ExchangeTest::headReachesTheServerByteForByte()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPRequest request;
    request.host = "127.0.0.1";
    request.port = server.port();
    request.path = "/a b?c=\xE4";
    request.headers = {{"B", "2"}, {"A", "1"}};
    HTTP_REQ_TYPE type = HTTP_REQ_DELETE;
    {
        HTTPSession session;
        QVERIFY(HTTPClient().sendHeader(type, session, request));
    }
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0),
             "DELETE /a b?c=\xE4 HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(server.port()) +
                 "\r\nA: 1\r\nB: 2\r\n\r\n");
}

void HTTPClient_ExchangeTest::headOfAnUnknownMethodBeginsWithASpace()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPRequest request;
    request.host = "127.0.0.1";
    request.port = server.port();
    request.headers.clear();
    auto type = static_cast<HTTP_REQ_TYPE>(9);
    {
        HTTPSession session;
        QVERIFY(HTTPClient().sendHeader(type, session, request));
    }
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0),
             " / HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(server.port()) + "\r\n\r\n");
}

void HTTPClient_ExchangeTest::lowSixteenBitsOfThePortAreUsed()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPRequest request;
    request.host = "127.0.0.1";
    request.port = server.port() + 0x30000;
    HTTP_REQ_TYPE type = HTTP_REQ_GET;
    {
        HTTPSession session;
        QVERIFY(HTTPClient().sendHeader(type, session, request));
    }
    QVERIFY(server.waitForScripts(1));
    QVERIFY(server.received(0).contains(
        "Host: 127.0.0.1:" + QByteArray::number(server.port() + 0x30000) + "\r\n"));
}

void HTTPClient_ExchangeTest::hostWithoutAddressIsStillConnectedTo()
{
    // The name cannot be resolved, so the client connects to the address 0, which is this computer.
    ScriptedServer server(answering("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok"));
    HTTPRequest request;
    request.url = "http://my_host:" + std::to_string(server.port());
    HTTPResponse response;
    std::string body;
    QVERIFY(HTTPClient().get(request, response, body));
    QCOMPARE(body, std::string("ok"));
    QVERIFY(server.waitForScripts(1));
    QVERIFY(server.received(0).contains("\r\nHost: my_host:"));
}

void HTTPClient_ExchangeTest::invalidDottedHostIsStillConnectedTo()
{
    // inet_addr() returns INADDR_NONE for this host, which is the broadcast address: connecting to
    // it fails.
    HTTPRequest request;
    request.host = "1.2.3.4.5";
    HTTP_REQ_TYPE type = HTTP_REQ_GET;
    HTTPSession session;
    QVERIFY(!HTTPClient().sendHeader(type, session, request));
    QVERIFY(isOpen(session.socketDescriptor));
}

void HTTPClient_ExchangeTest::refusedConnectionFailsAndLeavesTheSocketOpen()
{
    HTTPRequest request;
    request.host = "127.0.0.1";
    request.port = refusingPort();
    HTTP_REQ_TYPE type = HTTP_REQ_GET;
    HTTPSession session;
    QVERIFY(!HTTPClient().sendHeader(type, session, request));
    QVERIFY(isOpen(session.socketDescriptor));
}

void HTTPClient_ExchangeTest::failedSendLeavesTheSocketOpen()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPRequest request;
    request.host = "127.0.0.1";
    request.port = server.port();
    HTTP_REQ_TYPE type = HTTP_REQ_GET;
    {
        HTTPSession session;
        const SendPlan plan({3, -1});
        QVERIFY(!HTTPClient().sendHeader(type, session, request));
        QVERIFY(plan.used());
        QVERIFY(isOpen(session.socketDescriptor));
    }
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0), QByteArray("GET"));
}

void HTTPClient_ExchangeTest::headIsSentInAsManySendsAsItTakes()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPRequest request = requestTo(server, "/p");
    HTTPClient client;
    QVERIFY(client.parseUrl(request));
    HTTP_REQ_TYPE type = HTTP_REQ_GET;
    {
        HTTPSession session;
        const SendPlan plan({1, 2, 0, 3, 0, 0, 10, 1});
        QVERIFY(client.sendHeader(type, session, request));
        QVERIFY(plan.used());
    }
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0), defaultHead("GET /p", server));
}

void HTTPClient_ExchangeTest::headOfAMegabyteIsSentWhole()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPRequest request;
    request.host = "127.0.0.1";
    request.port = server.port();
    request.headers = {{"A", std::string(1000000, 'x')}};
    HTTP_REQ_TYPE type = HTTP_REQ_GET;
    {
        HTTPSession session;
        QVERIFY(HTTPClient().sendHeader(type, session, request));
    }
    QVERIFY(server.waitForScripts(1));
    QVERIFY(server.received(0).endsWith("\r\nA: " + QByteArray(1000000, 'x') + "\r\n\r\n"));
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
    ScriptedServer server(answering("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok"),
                          "192.168.1.120", 80);
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

void HTTPClient_ExchangeTest::getOfAnotherSchemeOpensNoSocket()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPRequest request;
    request.host = "127.0.0.1";
    request.port = server.port();
    HTTPResponse response;
    std::string body = "before";
    for (const char* url : {"https://127.0.0.1/p", "HTTP://127.0.0.1/p", "ftp://127.0.0.1/p",
                            "127.0.0.1/p", "http://", "http://127.0.0.1/a:b", ""}) {
        request.url = url;
        QVERIFY2(!HTTPClient().get(request, response, body), url);
    }
    QCOMPARE(body, std::string("before"));
    QCOMPARE(server.connectionCount(), 0);
}

void HTTPClient_ExchangeTest::getOfARefusedConnectionFails()
{
    HTTPRequest request;
    request.url = "http://127.0.0.1:" + std::to_string(refusingPort());
    HTTPResponse response;
    std::string body = "before";
    QVERIFY(!HTTPClient().get(request, response, body));
    QCOMPARE(body, std::string("before"));
    QCOMPARE(response.statusCode, 0);
}

void HTTPClient_ExchangeTest::getWhoseHeadCannotBeSentFails()
{
    ScriptedServer server([](Peer& peer) { peer.waitUntilClosedByClient(); });
    HTTPRequest request = requestTo(server, "/");
    HTTPResponse response;
    std::string body;
    const SendPlan plan({-1});
    QVERIFY(!HTTPClient().get(request, response, body));
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0), QByteArray());
}

void HTTPClient_ExchangeTest::getClosesItsConnectionAfterAFailure()
{
    const auto openDescriptors = [] {
        return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
    };
    HTTPRequest request;
    request.url = "http://127.0.0.1:" + std::to_string(refusingPort());
    HTTPResponse response;
    std::string body;
    const auto before = openDescriptors();
    for (int turn = 0; turn < 20; ++turn) {
        QVERIFY(!HTTPClient().get(request, response, body));
        QVERIFY(!HTTPClient().post(request, response, "data", body));
    }
    QCOMPARE(openDescriptors(), before);
}

void HTTPClient_ExchangeTest::getMayAppendToTheAddress()
{
    ScriptedServer server(answering("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"));
    HTTPRequest request = requestTo(server, "/a");
    const std::string url = request.url;
    HTTPResponse response;
    QVERIFY(HTTPClient().get(request, response, request.url));
    QCOMPARE(request.url, url + "hello");
    request.url = url;
    QVERIFY(HTTPClient().get(request, response, request.path));
    QCOMPARE(request.path, std::string("/ahello"));
    QVERIFY(server.waitForScripts(2));
    QCOMPARE(server.received(1), defaultHead("GET /a", server));
}

void HTTPClient_ExchangeTest::getOfAServerThatResetsInsideTheBodyFails()
{
    ScriptedServer server([](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel");
        peer.waitUntilRead();
        peer.reset();
    });
    HTTPRequest request = requestTo(server, "/");
    HTTPResponse response;
    std::string body;
    QVERIFY(!HTTPClient().get(request, response, body));
    QCOMPARE(body, std::string("hel"));
    QCOMPARE(response.received, 3u);
}

void HTTPClient_ExchangeTest::portAndPathOfAnEarlierAddressStay()
{
    ScriptedServer server({answering("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\na"),
                           answering("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nb")});
    HTTPRequest request = requestTo(server, "/first");
    HTTPResponse response;
    std::string body;
    QVERIFY(HTTPClient().get(request, response, body));
    request.url = "http://127.0.0.1";
    QVERIFY(HTTPClient().get(request, response, body));
    QVERIFY(server.waitForScripts(2));
    QCOMPARE(server.received(1), defaultHead("GET /first", server));
}

// --- in steps ----------------------------------------------------------------------------------

void HTTPClient_ExchangeTest::startGetReadsTheHeadOnly()
{
    ScriptedServer server(
        answering("HTTP/1.1 206 Partial Content\r\nContent-Length: 5\r\n\r\nhello"));
    HTTPRequest request = requestTo(server, "/p");
    HTTPResponse response;
    HTTPSession session;
    QVERIFY(HTTPClient().startGet(session, response, request));
    QCOMPARE(response.statusCode, 206);
    QCOMPARE(response.contentLength, 5u);
    QCOMPARE(response.received, 0u);
    std::string line;
    QCOMPARE(session.readLine(line, 5), 5);
    QCOMPARE(line, std::string("hello"));
    session.closeSession();
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.received(0), defaultHead("GET /p", server));
}

void HTTPClient_ExchangeTest::startGetOfARefusedAddressOpensNoSocket()
{
    HTTPRequest request;
    request.url = "https://127.0.0.1/";
    HTTPResponse response;
    HTTPSession session;
    QVERIFY(!HTTPClient().startGet(session, response, request));
    QCOMPARE(session.socketDescriptor, -1);
}

void HTTPClient_ExchangeTest::startGetOfARefusedConnectionLeavesTheSessionOpen()
{
    HTTPRequest request;
    request.url = "http://127.0.0.1:" + std::to_string(refusingPort());
    HTTPResponse response;
    HTTPSession session;
    QVERIFY(!HTTPClient().startGet(session, response, request));
    const int descriptor = session.socketDescriptor;
    QVERIFY(isOpen(descriptor));
    HTTPClient().stopGet(session);
    QVERIFY(!isOpen(descriptor));
}

void HTTPClient_ExchangeTest::startGetOnAConnectedSessionFails()
{
    ScriptedServer server(answering("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"));
    HTTPRequest request = requestTo(server, "/");
    HTTPResponse response;
    HTTPSession session;
    QVERIFY(HTTPClient().startGet(session, response, request));
    QVERIFY(!HTTPClient().startGet(session, response, request));
    std::string body;
    QVERIFY(HTTPClient().getData(session, response, body));
    QCOMPARE(body, std::string("hello"));
    HTTPClient().stopGet(session);
    QVERIFY(server.waitForScripts(1));
    QCOMPARE(server.connectionCount(), 1);
}

void HTTPClient_ExchangeTest::getDataReadsTheBodyAndStopGetCloses()
{
    ScriptedServer server(answering("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"));
    HTTPRequest request = requestTo(server, "/");
    HTTPResponse response;
    HTTPSession session;
    std::string body = "before ";
    QVERIFY(HTTPClient().startGet(session, response, request));
    QVERIFY(HTTPClient().getData(session, response, body));
    QCOMPARE(body, std::string("before hello"));
    const int descriptor = session.socketDescriptor;
    QVERIFY(isOpen(descriptor));
    HTTPClient().stopGet(session);
    QCOMPARE(session.socketDescriptor, -1);
    QVERIFY(!isOpen(descriptor));
    QVERIFY(server.waitForScripts(1));
}

void HTTPClient_ExchangeTest::getDataOfAClosedPeerReturnsFalse()
{
    ScriptedServer server([](Peer& peer) {
        peer.receiveUntil("\r\n\r\n");
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel");
        peer.close();
    });
    HTTPRequest request = requestTo(server, "/");
    HTTPResponse response;
    HTTPSession session;
    std::string body;
    QVERIFY(HTTPClient().startGet(session, response, request));
    QVERIFY(!HTTPClient().getData(session, response, body));
    QVERIFY(!HTTPClient().getData(session, response, body));
    QCOMPARE(body, std::string("hel"));
    HTTPClient().stopGet(session);
}

void HTTPClient_ExchangeTest::stopGetOfAnUnusedSessionDoesNothing()
{
    HTTPSession session;
    HTTPClient().stopGet(session);
    QCOMPARE(session.socketDescriptor, -1);
}

BELUN_NETWORK_TEST(HTTPClient_ExchangeTest)
#include "HTTPClient_ExchangeTest.moc"
