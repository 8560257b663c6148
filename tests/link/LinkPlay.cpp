#include "tests/link/LinkPlay.h"

#include "tests/link/LinkConversations.h"

#include <QElapsedTimer>
#include <QThread>

using support::Exchange;
using support::Peer;
using support::Piece;

namespace {

const QString connects = QStringLiteral("connects");

/// Waits until the condition holds, for up to five seconds.
template <class Condition>
void waitUntil(const Condition& condition)
{
    QElapsedTimer time;
    time.start();
    while (!condition() && time.elapsed() < 5000 * support::timeFactor()) {
        QThread::usleep(100);
    }
}

} // namespace

LinkPlay::LinkPlay(const Module& module)
    : m_server(
          [this](Peer& peer) {
              ++m_scripts;
              peer.serve();
          },
          module.address, modulePort),
      m_link(module)
{
}

QString LinkPlay::happensIn(const Exchange& exchange)
{
    const int ticks = ticksOf(exchange);
    if (!m_threadsEnd) {
        m_link.tick(ticks);
        m_link.start();
        const QString first = waitFor(connects);
        if (first != connects) {
            return "before the first bytes: " + first;
        }
    } else if (ticks > 0 && m_link.watch.waitUntilAsleep()) {
        m_link.tick(ticks);
    }
    for (const Piece& piece : exchange.pieces) {
        send(piece.bytes);
    }
    if (exchange.peerCloses) {
        peer().halfClose();
    } else if (exchange.peerResets) {
        peer().wantReset();
    }
    return waitFor(QString::fromStdString(exchange.result));
}

QString LinkPlay::happensAfterwards()
{
    m_link.thread->stopAndWait();
    m_server.waitForScripts(m_connection + 1);
    return text(observed());
}

void LinkPlay::send(const std::string& bytes)
{
    peer().trySend(QByteArray::fromStdString(bytes));
    m_sentToThread += bytes.size();
    waitUntil([&] { return m_threadsEnd->hasTaken(m_sentToThread) && m_link.watch.isAsleep(); });
}

LinkPlay::Observed LinkPlay::observed() const
{
    return {m_threadsEnd ? peer().received().mid(m_before.sent.size()) : QByteArray(),
            m_link.recorder.signalTexts().mid(m_before.signalTexts.size()),
            m_link.log.lines().mid(m_before.lines.size())};
}

QStringList LinkPlay::connecting() const
{
    const Module& module = m_link.module;
    return QStringList(module.threadName + (m_threadsEnd ? " run exit" : " build")) +
           module.connecting;
}

QString LinkPlay::text(const Observed& observed) const
{
    QStringList all;
    if (!observed.sent.isEmpty()) {
        all.append("sends " + QString::fromLatin1(observed.sent.toHex(' ')).toUpper());
    }
    all += observed.signalTexts;
    const QStringList& lines = observed.lines;
    const QStringList connection = connecting();
    const auto others = lines.size() - connection.size();
    const bool isConnected = others >= 0 && lines.mid(others) == connection;
    for (const QString& line : lines.mid(0, isConnected ? others : lines.size())) {
        all.append("logs \"" + line + "\"");
    }
    if (isConnected) {
        all.append(connects);
    }
    return all.isEmpty() ? "nothing" : all.join(", ");
}

QString LinkPlay::waitFor(const QString& expected)
{
    Observed last;
    waitUntil([&] {
        last = observed();
        return text(last) == expected;
    });
    const QString happened = text(last);
    m_before.signalTexts += last.signalTexts;
    m_before.lines += last.lines;
    m_before.sent += last.sent;
    if (happened.endsWith(connects)) {
        if (m_threadsEnd) {
            peer().halfClose();
            peer().wantClose();
        }
        ++m_connection;
        waitUntil([&] { return m_scripts > m_connection; });
        m_threadsEnd.emplace(modulePort);
        m_sentToThread = 0;
        m_before.sent.clear();
    }
    return happened;
}
