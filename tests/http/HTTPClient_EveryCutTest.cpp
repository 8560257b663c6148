// Plays the HTTP conversations over a socket pair: whole, byte by byte, with pauses, and split,
// closed or failing at every byte.
#include "tests/http/WireOutcome.h"
#include "tests/kit/ConversationRows.h"
#include "tests/kit/TestMain.h"

#include <algorithm>
#include <functional>

#include <QByteArray>
#include <QObject>
#include <QTest>

using support::allBytes;
using support::Conversation;
using support::Exchange;

namespace {

QByteArray text(const std::string& bytes)
{
    return QByteArray::fromStdString(bytes);
}

/// A function that splits the bytes that the peer sends in an exchange.
using Split = std::function<std::vector<std::string>(const std::string&, const Exchange&)>;

void play(const Conversation& conversation, bool closes, const Split& split)
{
    Record record;
    for (const Exchange& exchange : conversation.exchanges) {
        const support::Delivery delivery{split(allBytes(exchange.pieces), exchange),
                                         closes || exchange.peerCloses};
        const Outcome outcome = readFrom(exchange.call, record, delivery);
        QCOMPARE(text(outcome.text), text(exchange.result));
        QCOMPARE(text(outcome.unread), text(exchange.unread));
    }
}

/// Compares the outcome of a connection that ends after the first `count` bytes.
void compareEnd(const Exchange& exchange, std::size_t count, const std::string& outcome)
{
    const std::string expected =
        support::closedBehind(exchange.pieces, exchange.closedAtStart, count);
    if (outcome != expected) {
        qInfo("ended after %zu bytes", count);
    }
    QCOMPARE(text(outcome), text(expected));
}

} // namespace

class HTTPClient_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void deliveredWhole_data() { support::addConversationsWithoutPauses("http"); }
    void deliveredWhole();
    void deliveredByteByByte_data() { deliveredWhole_data(); }
    void deliveredByteByByte();
    void cutAtEveryPosition_data() { deliveredWhole_data(); }
    void cutAtEveryPosition();
    void closedAtEveryPosition_data() { support::addConversationsThatMayEnd("http"); }
    void closedAtEveryPosition();
    void failedAtEveryPosition_data() { closedAtEveryPosition_data(); }
    void failedAtEveryPosition();
    void deliveredWithPauses_data() { support::addConversationsWithPauses("http"); }
    void deliveredWithPauses();
};

void HTTPClient_EveryCutTest::deliveredWhole()
{
    QFETCH(Conversation, conversation);
    play(conversation, false,
         [](const std::string& bytes, const Exchange&) { return std::vector<std::string>{bytes}; });
}

void HTTPClient_EveryCutTest::deliveredByteByByte()
{
    QFETCH(Conversation, conversation);
    play(conversation, false,
         [](const std::string& bytes, const Exchange&) { return support::singleBytes(bytes); });
}

void HTTPClient_EveryCutTest::cutAtEveryPosition()
{
    QFETCH(Conversation, conversation);
    std::size_t longest = 0;
    for (const Exchange& exchange : conversation.exchanges) {
        longest = std::max(longest, allBytes(exchange.pieces).size());
    }
    for (std::size_t position = 1; position < longest; ++position) {
        play(conversation, false, [position](const std::string& bytes, const Exchange&) {
            return support::cut(bytes, {std::min(position, bytes.size())});
        });
        if (QTest::currentTestFailed()) {
            qInfo("split after %zu bytes", position);
            return;
        }
    }
}

void HTTPClient_EveryCutTest::closedAtEveryPosition()
{
    QFETCH(Conversation, conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    for (std::size_t count = 0; count <= bytes.size(); ++count) {
        Record record;
        compareEnd(exchange, count,
                   readFrom(exchange.call, record, {{bytes.substr(0, count)}, true}).text);
    }
}

// A failed receive ends a call in the same way as the end of the connection.
void HTTPClient_EveryCutTest::failedAtEveryPosition()
{
    QFETCH(Conversation, conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    // The exception, readLine() before any byte has arrived, is tested in HTTPSessionTest.
    const bool readsLine = exchange.call.rfind("readLine", 0) == 0;
    for (std::size_t count = readsLine ? 1 : 0; count <= bytes.size(); ++count) {
        Record record;
        compareEnd(exchange, count, readFromFailing(exchange.call, record, bytes.substr(0, count)));
    }
}

void HTTPClient_EveryCutTest::deliveredWithPauses()
{
    QFETCH(Conversation, conversation);
    for (const bool closes : {false, true}) {
        play(conversation, closes, [](const std::string& bytes, const Exchange& exchange) {
            return support::cut(bytes, exchange.pauses);
        });
        if (QTest::currentTestFailed()) {
            return;
        }
    }
}

BELUN_TEST(HTTPClient_EveryCutTest)
#include "HTTPClient_EveryCutTest.moc"
