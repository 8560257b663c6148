// A server of one test and the client's side of a request to it.
#pragma once

#include "http/HTTPClient.h"
#include "tests/kit/ScriptedServer.h"

#include <string>

#include <QByteArray>

/// Returns a script that receives a request up to `endOfRequest`, sends the answer and waits for
/// the client to close.
support::ScriptedServer::Script answering(const QByteArray& answer,
                                          const QByteArray& endOfRequest = "\r\n\r\n");
/// Returns a script that only receives until the client closes.
support::ScriptedServer::Script receiving();

/// Returns a port of this computer without a listener.
int refusingPort();
bool isOpen(int descriptor);

/// A server at 127.0.0.1 that runs a script for every connection, a request whose address is the
/// server's, and the records of the exchange.
struct TcpScene
{
    explicit TcpScene(support::ScriptedServer::Script script, const std::string& path = "/");

    /// Connects the session to the server.
    bool connect();
    bool get() { return HTTPClient().get(request, response, body); }
    bool post(const std::string& data) { return HTTPClient().post(request, response, data, body); }

    /// Closes the session and returns everything received on the first connection.
    QByteArray received();
    /// Returns the line "Host: 127.0.0.1:PORT" with its line ending.
    QByteArray hostLine() const;
    /// Returns the head of a request with the default headers. An example of `methodAndPath` is
    /// "GET /p".
    QByteArray defaultHead(const QByteArray& methodAndPath) const;

    support::ScriptedServer server;
    HTTPRequest request;
    HTTPResponse response;
    HTTPSession session;
    std::string body;
};
