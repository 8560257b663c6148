// Exchanges of the HTTP client that end in any case.
#pragma once

#include "RealServer.h"
#include "http/HTTPClient.h"

#include <functional>
#include <string>

/// What an exchange of the library gave.
struct Outcome
{
    bool result = false;
    HTTPResponse response;
    std::string body;
    qint64 milliseconds = 0;

    QByteArray bytes() const { return QByteArray::fromStdString(body); }
};

/// Runs an exchange in a thread of its own. The client knows no time-out: an exchange that lasts
/// ten seconds is ended by ending its server, and fails the test.
Outcome bounded(RealServer& server, const std::function<Outcome()>& exchange);
