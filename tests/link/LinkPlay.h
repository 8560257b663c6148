// Plays the module in conversations with its link thread, over TCP in the private network.
#pragma once

#include "tests/kit/ConversationFile.h"
#include "tests/kit/PacedSending.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/link/Link.h"

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>

#include <QString>

class LinkPlay
{
public:
    explicit LinkPlay(const Module& module);

    /// Plays the exchange; the first call also starts the thread. Returns what happened, as soon as
    /// that equals the result of the exchange or five seconds have passed.
    QString happensIn(const support::Exchange& exchange);
    /// Stops the thread. Returns what happened after the last exchange.
    QString happensAfterwards();

private:
    struct Observed
    {
        QByteArray sent;
        QStringList signalTexts;
        QStringList lines;
    };

    /// Sends the bytes and waits until the thread has received them and blocks again.
    void send(const std::string& bytes);
    support::Peer& peer() const { return m_server.peer(m_connection); }
    /// Returns what was observed since the last exchange.
    Observed observed() const;
    /// Returns the log lines that the next connection adds; for the first one, also the line of the
    /// thread's construction.
    QStringList connecting() const;
    /// Returns the observations as a result states them.
    QString text(const Observed& observed) const;
    /// Waits until the expected result is observed or five seconds have passed. Returns what was
    /// observed and ends the exchange.
    QString waitFor(const QString& expected);

    std::atomic<int> m_scripts{0}; // scripts that have begun, one for each connection
    support::ScriptedServer m_server;
    int m_connection = -1;
    std::optional<support::ReadingEnd> m_threadsEnd; // set once the thread has connected
    std::size_t m_sentToThread = 0;
    Observed m_before; // earlier exchanges: bytes of this connection, signals and lines of all
    Link m_link;
};
