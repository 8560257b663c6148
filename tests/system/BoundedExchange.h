// Exchanges of the HTTP client with a time limit.
#pragma once

#include "RealServer.h"
#include "http/HTTPClient.h"

#include <functional>
#include <string>

/// The result of an exchange.
struct Outcome
{
    bool result = false;
    HTTPResponse response;
    std::string body;
    qint64 milliseconds = 0;

    QByteArray bytes() const { return QByteArray::fromStdString(body); }
};

/// Runs an exchange in a separate thread. The client has no timeout: an exchange that takes ten
/// seconds is ended by stopping its server and fails the test.
Outcome bounded(RealServer& server, const std::function<Outcome()>& exchange);
