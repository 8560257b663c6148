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

    /// Starts the thread at the first call. Plays the exchange, and returns what happened in it
    /// once that is the result of the exchange, or after five seconds.
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

    /// Sends the bytes and waits until the thread has received them and waits for more.
    void send(const std::string& bytes);
    support::Peer& peer() const { return m_server.peer(m_connection); }
    /// Returns what was observed since the last exchange.
    Observed observed() const;
    /// Returns the log lines of a new connection.
    QStringList connecting() const;
    /// Describes it as the result of an exchange.
    QString text(const Observed& observed) const;
    /// Waits until this is observed. Returns what was observed, which ends the exchange.
    QString waitFor(const QString& expected);

    std::atomic<int> m_scripts{0}; // that have begun, one for each connection
    support::ScriptedServer m_server;
    int m_connection = -1;
    std::optional<support::ReadingEnd> m_threadsEnd; // if the thread has connected
    std::size_t m_sentToThread = 0;
    Observed m_before; // in earlier exchanges: sent on this connection, emitted and logged on any
    Link m_link;
};
