// Plays every conversation of a download: split and closed at every byte, or with its pauses.
#include "tests/download/CameraPlay.h"
#include "tests/kit/ConversationRows.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QObject>
#include <QTest>

using support::allBytes;
using support::Conversation;
using support::Exchange;

namespace {

/// Plays an exchange and prints the split, such as "closed after 3", if the result is not
/// `expected`.
void play(const Exchange& exchange, const std::vector<std::string>& pieces,
          const std::string& expected, const char* how, std::size_t position)
{
    const std::string result = played(exchange, pieces);
    if (result != expected) {
        qInfo("%s %zu", how, position);
    }
    QCOMPARE(QByteArray::fromStdString(result), QByteArray::fromStdString(expected));
}

} // namespace

class ResponseHead_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void deliveredWholeByteByByteAndCutAnywhere_data()
    {
        support::addConversationsWithoutPauses("download");
    }
    void deliveredWholeByteByByteAndCutAnywhere();
    void closedAnywhere_data() { support::addConversationsThatMayEnd("download"); }
    void closedAnywhere();
    void deliveredWithPauses_data() { support::addConversationsWithPauses("download"); }
    void deliveredWithPauses();
};

void ResponseHead_EveryCutTest::deliveredWholeByteByByteAndCutAnywhere()
{
    QFETCH(Conversation, conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    play(exchange, {bytes}, exchange.result, "whole,", bytes.size());
    play(exchange, support::singleBytes(bytes), exchange.result, "byte by byte,", bytes.size());
    for (std::size_t position = 1; position < bytes.size() && !QTest::currentTestFailed();
         ++position) {
        play(exchange, support::cut(bytes, {position}), exchange.result, "split after", position);
    }
}

void ResponseHead_EveryCutTest::closedAnywhere()
{
    QFETCH(Conversation, conversation);
    Exchange& exchange = conversation.exchanges.front();
    exchange.peerCloses = true;
    const std::string bytes = allBytes(exchange.pieces);
    for (std::size_t count = 0; count <= bytes.size() && !QTest::currentTestFailed(); ++count) {
        play(exchange, {bytes.substr(0, count)},
             support::closedBehind(exchange.pieces, exchange.closedAtStart, count), "closed after",
             count);
    }
}

void ResponseHead_EveryCutTest::deliveredWithPauses()
{
    QFETCH(Conversation, conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    play(exchange, support::cut(bytes, exchange.pauses), exchange.result, "with pauses,",
         bytes.size());
}

BELUN_NETWORK_TEST(ResponseHead_EveryCutTest)
#include "ResponseHead_EveryCutTest.moc"
