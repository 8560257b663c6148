// Plays the answers about the card, split and closed at every byte: `client count`, `client list`
// and `client details`.
#include "card/CardAnswers.h"

#include "card/CardCommands.h"
#include "card/FileInfoText.h"
#include "http/HTTPClient.h"
#include "tests/kit/ConversationRows.h"
#include "tests/kit/PieceSender.h"
#include "tests/kit/SocketPair.h"
#include "tests/kit/TestMain.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QObject>
#include <QTest>

using support::allBytes;
using support::Conversation;
using support::Delivery;
using support::Exchange;
using support::inQuotes;

namespace {

std::string countIn(const char* answer)
{
    const auto text = card::textBetween(answer, card::countStart, card::valueEnd);
    return text ? inQuotes(std::string(*text)) : "none";
}

std::string namesIn(const char* answer)
{
    std::string names;
    card::FileListWalk walk(answer);
    while (const auto entry = walk.next()) {
        names += names.empty() ? "" : " ";
        names += entry->name ? inQuotes(std::string(*entry->name)) : "-";
    }
    return names.empty() ? "no entry" : names;
}

std::string detailsIn(const char* answer)
{
    const card::FileInfoText texts = card::readFileInfo(answer);
    return inQuotes(texts.date.toStdString()) + ' ' + inQuotes(texts.size.toStdString()) + ' ' +
           inQuotes(texts.duration.toStdString());
}

/// Receives an answer of the announced length, or without a length if `announced` is 0, and returns
/// the result of the call.
std::string result(const std::string& call, std::size_t announced, const Delivery& delivery)
{
    support::SocketPair pair;
    HTTPSession session;
    session.socketDescriptor = std::exchange(pair.product, -1); // closed by the session
    support::PieceSender sender(pair.test, session.socketDescriptor, delivery);
    HTTPResponse response;
    response.contentLength = static_cast<std::uint32_t>(announced);
    std::string body;
    const bool received = HTTPClient().readBody(session, response, body);
    sender.finish();
    if (!received) {
        return "no answer";
    }
    // Exactly as large as the answer, so that a memory checker detects reads past the end.
    std::vector<char> answer(body.size() + 1);
    std::copy(body.begin(), body.end(), answer.begin());
    return call == "count"     ? countIn(answer.data())
           : call == "list"    ? namesIn(answer.data())
           : call == "details" ? detailsIn(answer.data())
                               : "unknown call";
}

void play(const Exchange& exchange, std::size_t announced, const Delivery& delivery,
          const std::string& expected, const char* how, std::size_t position)
{
    const std::string actual = result(exchange.call, announced, delivery);
    if (actual != expected) {
        qInfo("%s %zu, %zu bytes announced", how, position, announced);
    }
    QCOMPARE(QByteArray::fromStdString(actual), QByteArray::fromStdString(expected));
}

} // namespace

class CardAnswers_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void answerOfAnnouncedLengthIsReadWhole_data()
    {
        support::addConversationsWithoutPauses("card");
    }
    void answerOfAnnouncedLengthIsReadWhole();
    void answerWithoutALengthIsReadAsFarAsReceived_data()
    {
        support::addConversationsThatMayEnd("card");
    }
    void answerWithoutALengthIsReadAsFarAsReceived();
    void longAnswerIsReadWhole_data() { support::addConversationsWithPauses("card"); }
    void longAnswerIsReadWhole();
};

void CardAnswers_EveryCutTest::answerOfAnnouncedLengthIsReadWhole()
{
    QFETCH(Conversation, conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    const std::size_t size = bytes.size();
    play(exchange, size, {{bytes}}, exchange.result, "whole,", size);
    play(exchange, size, {support::singleBytes(bytes)}, exchange.result, "byte by byte,", size);
    for (std::size_t position = 0; position < size && !QTest::currentTestFailed(); ++position) {
        play(exchange, size, {support::cut(bytes, {position})}, exchange.result, "split after",
             position);
        play(exchange, size, {{bytes.substr(0, position)}, true}, "no answer", "closed after",
             position);
    }
}

// Without a length, reading ends with the first receive.
void CardAnswers_EveryCutTest::answerWithoutALengthIsReadAsFarAsReceived()
{
    QFETCH(Conversation, conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    for (std::size_t position = 0; position <= bytes.size() && !QTest::currentTestFailed();
         ++position) {
        const std::string expected =
            support::closedBehind(exchange.pieces, exchange.closedAtStart, position);
        play(exchange, 0, {{bytes.substr(0, position)}, true}, expected, "closed after", position);
        if (position > 0) {
            play(exchange, 0, {support::cut(bytes, {position})}, expected, "split after", position);
        }
    }
}

void CardAnswers_EveryCutTest::longAnswerIsReadWhole()
{
    QFETCH(Conversation, conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    play(exchange, bytes.size(), {{bytes}}, exchange.result, "whole,", bytes.size());
}

BELUN_TEST(CardAnswers_EveryCutTest)
#include "CardAnswers_EveryCutTest.moc"
