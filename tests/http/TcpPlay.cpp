#include "tests/http/TcpPlay.h"

#include "http/HTTPClient.h"
#include "tests/http/WireOutcome.h"

#include <sstream>

#include <QTest>

using support::Conversation;
using support::Exchange;
using support::Peer;
using support::ScriptedServer;

QByteArray defaultHead(const QByteArray& methodAndPath, const ScriptedServer& server)
{
    return methodAndPath + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(server.port()) +
           "\r\nAccept: */*\r\nAccept-Language: zh-CN\r\nConnection: Keep-Alive\r\n"
           "User-Agent: SDK C++ http client\r\n\r\n";
}

void sendWithPauses(Peer& peer, const Exchange& exchange)
{
    for (const std::string& piece :
         support::cut(support::allBytes(exchange.pieces), exchange.pauses)) {
        peer.waitUntilRead();
        peer.send(QByteArray::fromStdString(piece));
    }
}

void sendBytewise(Peer& peer, const Exchange& exchange)
{
    peer.sendBytewise(QByteArray::fromStdString(support::allBytes(exchange.pieces)));
}

void playOverTcp(const Conversation& conversation, void (*send)(Peer&, const Exchange&))
{
    Record record;
    for (const Exchange& exchange : conversation.exchanges) {
        std::istringstream words(prepared(exchange.call, record));
        std::string method;
        std::string path;
        std::string data;
        words >> method >> path >> data;
        const ScriptedServer::Script script = [&](Peer& peer) {
            peer.receiveUntil("\r\n\r\n" + QByteArray::fromStdString(data));
            send(peer, exchange);
            if (exchange.peerCloses) {
                peer.close();
            } else {
                peer.waitUntilClosedByClient();
            }
        };
        ScriptedServer server(std::vector{script}); // a second connection is an error
        HTTPRequest request;
        request.url = "http://127.0.0.1:" + std::to_string(server.port()) + path;
        const bool result = method == "post"
                                ? HTTPClient().post(request, record.response, data, record.body)
                                : HTTPClient().get(request, record.response, record.body);
        QCOMPARE(QByteArray::fromStdString(describe(result, record)),
                 QByteArray::fromStdString(exchange.result));
        QVERIFY(server.waitForScripts(1));
        const QByteArray methodAndPath =
            QByteArray::fromStdString(method).toUpper() + " " + QByteArray::fromStdString(path);
        QCOMPARE(server.received(0),
                 defaultHead(methodAndPath, server) + QByteArray::fromStdString(data));
    }
}
