#include "tests/link/LinkPlay.h"

#include "tests/link/LinkConversations.h"

#include <QElapsedTimer>
#include <QThread>

using support::Exchange;
using support::Peer;
using support::Piece;

namespace {

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
        const QString first = waitFor("connects");
        if (first != "connects") {
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
    return observed().text();
}

void LinkPlay::send(const std::string& bytes)
{
    peer().trySend(QByteArray::fromStdString(bytes));
    m_sentToThread += bytes.size();
    waitUntil([&] { return m_threadsEnd->hasTaken(m_sentToThread) && m_link.watch.isAsleep(); });
}

LinkPlay::Observed LinkPlay::observed() const
{
    QStringList connecting = m_link.module.connecting;
    if (m_threadsEnd) {
        connecting.prepend(m_link.module.threadName + " run exit");
    }
    const QStringList lines = m_link.log.lines().mid(m_linesBefore);
    const int others = lines.size() - connecting.size();
    const bool connects = others >= 0 && lines.mid(others) == connecting;
    return {m_threadsEnd ? peer().received().mid(m_sentBefore) : QByteArray(),
            m_link.recorder.signalTexts().mid(m_signalsBefore), lines, connects,
            connects ? others : lines.size()};
}

QString LinkPlay::Observed::text() const
{
    QStringList all;
    if (!sent.isEmpty()) {
        all.append("sends " + QString::fromLatin1(sent.toHex(' ')).toUpper());
    }
    all += signalTexts;
    for (const QString& line : lines.mid(0, otherLines)) {
        all.append("logs \"" + line + "\"");
    }
    if (connects) {
        all.append("connects");
    }
    return all.isEmpty() ? "nothing" : all.join(", ");
}

QString LinkPlay::waitFor(const QString& expected)
{
    Observed last;
    waitUntil([&] {
        last = observed();
        return last.text() == expected;
    });
    m_sentBefore += last.sent.size();
    m_signalsBefore += last.signalTexts.size();
    m_linesBefore += last.lines.size();
    if (last.connects) {
        if (m_threadsEnd) {
            peer().halfClose();
            peer().wantClose();
        }
        ++m_connection;
        waitUntil([&] { return m_scripts > m_connection; });
        m_threadsEnd.emplace(modulePort);
        m_sentToThread = 0;
        m_sentBefore = 0;
    }
    return last.text();
}
