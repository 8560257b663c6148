#include "tests/http/TcpScene.h"

#include <utility>

#include <arpa/inet.h>
#include <fcntl.h>

#include <QTest>

using support::Peer;
using support::ScriptedServer;

ScriptedServer::Script answering(const QByteArray& answer, const QByteArray& endOfRequest)
{
    return [answer, endOfRequest](Peer& peer) {
        peer.receiveUntil(endOfRequest);
        peer.send(answer);
        peer.waitUntilClosedByClient();
    };
}

ScriptedServer::Script receiving()
{
    return [](Peer& peer) { peer.waitUntilClosedByClient(); };
}

int refusingPort()
{
    return ScriptedServer(receiving()).port();
}

bool isOpen(int descriptor)
{
    return ::fcntl(descriptor, F_GETFD) != -1;
}

TcpScene::TcpScene(ScriptedServer::Script script, const std::string& path)
    : server(std::move(script))
{
    request.url = "http://127.0.0.1:" + std::to_string(server.port()) + path;
}

bool TcpScene::connect()
{
    return session.connect(htonl(INADDR_LOOPBACK), htons(server.port()));
}

QByteArray TcpScene::received()
{
    session.closeSession();
    return server.waitForScripts(1) ? server.received(0) : "the script has not ended";
}

QByteArray TcpScene::hostLine() const
{
    return "Host: 127.0.0.1:" + QByteArray::number(server.port()) + "\r\n";
}

QByteArray TcpScene::defaultHead(const QByteArray& methodAndPath) const
{
    return methodAndPath + " HTTP/1.1\r\n" + hostLine() +
           "Accept: */*\r\nAccept-Language: zh-CN\r\nConnection: Keep-Alive\r\n"
           "User-Agent: SDK C++ http client\r\n\r\n";
}
