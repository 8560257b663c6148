#include "tests/http/TcpPlay.h"

#include "tests/http/TcpScene.h"
#include "tests/http/WireOutcome.h"

#include <sstream>

#include <QTest>

using support::Conversation;
using support::Exchange;
using support::Peer;
using support::ScriptedServer;

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
        TcpScene scene(script, path);
        const bool result =
            method == "post" ? HTTPClient().post(scene.request, record.response, data, record.body)
                             : HTTPClient().get(scene.request, record.response, record.body);
        QCOMPARE(QByteArray::fromStdString(describe(result, record)),
                 QByteArray::fromStdString(exchange.result));
        QCOMPARE(scene.received(), scene.defaultHead(QByteArray::fromStdString(method).toUpper() +
                                                     " " + QByteArray::fromStdString(path)) +
                                       QByteArray::fromStdString(data));
        QCOMPARE(scene.server.connectionCount(), 1);
    }
}
