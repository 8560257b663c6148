// Valid and invalid heads and bodies, split and closed at every byte.
#include "tests/http/Conversations.h"
#include "tests/http/WireOutcome.h"
#include "tests/support/TestMain.h"

#include <QByteArray>
#include <QObject>
#include <QTest>

Q_DECLARE_METATYPE(Conversation)
Q_DECLARE_METATYPE(std::vector<std::string>)
Q_DECLARE_METATYPE(HTTPResponse)

namespace {

void addRows(const char* kind, const std::vector<Conversation>& conversations)
{
    for (const Conversation& conversation : conversations) {
        QTest::addRow("%s: %s", kind, conversation.name) << conversation;
    }
}

void addAllConversations()
{
    QTest::addColumn<Conversation>("conversation");
    addRows("head", headConversations());
    addRows("plain", plainConversations());
    addRows("chunked", chunkedConversations());
    addRows("odd chunk", oddChunkConversations());
    addRows("carried over", carriedOverConversations());
}

QByteArray text(const std::string& bytes)
{
    return QByteArray::fromStdString(bytes);
}

/// Compares the outcome after all pieces were delivered.
void checkWhole(const Conversation& conversation, std::vector<std::string> pieces)
{
    const support::Delivery delivery{std::move(pieces), !conversation.endsByItself};
    const Outcome outcome = readFrom(conversation.reader, conversation.before, delivery);
    QCOMPARE(text(outcome.text), text(conversation.pieces.back().closed));
    QCOMPARE(text(outcome.unread), text(conversation.unread));
}

} // namespace

class HTTPClient_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void deliveredWhole_data() { addAllConversations(); }
    void deliveredWhole();
    void deliveredByteByByte_data() { addAllConversations(); }
    void deliveredByteByByte();
    void cutAtEveryPosition_data() { addAllConversations(); }
    void cutAtEveryPosition();
    void closedAtEveryPosition_data() { addAllConversations(); }
    void closedAtEveryPosition();

    void bodyWithoutLengthEndsWithTheFirstPiece_data();
    void bodyWithoutLengthEndsWithTheFirstPiece();
    void bytesBeyondTheLengthAreKeptIfInTheSamePiece_data();
    void bytesBeyondTheLengthAreKeptIfInTheSamePiece();
    void bodyAfterAnOlderLargerCountEndsWithTheFirstPiece_data();
    void bodyAfterAnOlderLargerCountEndsWithTheFirstPiece();
};

void HTTPClient_EveryCutTest::deliveredWhole()
{
    QFETCH(Conversation, conversation);
    checkWhole(conversation, {support::allBytes(conversation.pieces)});
}

void HTTPClient_EveryCutTest::deliveredByteByByte()
{
    QFETCH(Conversation, conversation);
    checkWhole(conversation, support::singleBytes(support::allBytes(conversation.pieces)));
}

void HTTPClient_EveryCutTest::cutAtEveryPosition()
{
    QFETCH(Conversation, conversation);
    const std::string bytes = support::allBytes(conversation.pieces);
    for (std::size_t position = 1; position < bytes.size(); ++position) {
        checkWhole(conversation, support::cut(bytes, {position}));
        if (QTest::currentTestFailed()) {
            qInfo("split after %zu of %zu bytes", position, bytes.size());
            return;
        }
    }
}

void HTTPClient_EveryCutTest::closedAtEveryPosition()
{
    QFETCH(Conversation, conversation);
    const std::string bytes = support::allBytes(conversation.pieces);
    for (std::size_t count = 0; count <= bytes.size(); ++count) {
        const support::Delivery delivery{{bytes.substr(0, count)}, true};
        const Outcome outcome = readFrom(conversation.reader, conversation.before, delivery);
        const std::string expected =
            support::closedBehind(conversation.pieces, conversation.closedAtStart, count);
        if (outcome.text != expected) {
            qInfo("closed after %zu of %zu bytes", count, bytes.size());
        }
        QCOMPARE(text(outcome.text), text(expected));
    }
}

// --- where a cut changes the result, since a plain body may end with any receive ---------------

static void addCutRows(const HTTPResponse& before,
                       const std::vector<std::vector<std::string>>& rows)
{
    QTest::addColumn<std::vector<std::string>>("row");
    QTest::addColumn<HTTPResponse>("before");
    for (const std::vector<std::string>& row : rows) {
        QTest::newRow(row.front().c_str()) << row << before;
    }
}

/// Each row has a name, the outcome, the unread bytes and the pieces.
static void checkCutRow()
{
    QFETCH(std::vector<std::string>, row);
    QFETCH(HTTPResponse, before);
    for (const bool closeAtTheEnd : {false, true}) {
        const support::Delivery delivery{{row.begin() + 3, row.end()}, closeAtTheEnd};
        const Outcome outcome = readFrom(Reader::Body, before, delivery);
        QCOMPARE(text(outcome.text), text(row[1]));
        QCOMPARE(text(outcome.unread), text(row[2]));
    }
}

void HTTPClient_EveryCutTest::bodyWithoutLengthEndsWithTheFirstPiece_data()
{
    addCutRows({}, {
                       {"whole", "true received=5 \"hello\"", "", "hello"},
                       {"split after 1", "true received=1 \"h\"", "ello", "h", "ello"},
                       {"split after 2", "true received=2 \"he\"", "llo", "he", "llo"},
                       {"split after 3", "true received=3 \"hel\"", "lo", "hel", "lo"},
                       {"split after 4", "true received=4 \"hell\"", "o", "hell", "o"},
                       {"byte by byte", "true received=1 \"h\"", "ello", "h", "e", "l", "l", "o"},
                   });
}

void HTTPClient_EveryCutTest::bodyWithoutLengthEndsWithTheFirstPiece()
{
    checkCutRow();
}

void HTTPClient_EveryCutTest::bytesBeyondTheLengthAreKeptIfInTheSamePiece_data()
{
    HTTPResponse length2;
    length2.contentLength = 2;
    addCutRows(
        length2,
        {
            {"whole", "true length=2 received=5 \"hello\"", "", "hello"},
            {"split after 1", "true length=2 received=5 \"hello\"", "", "h", "ello"},
            {"split after 2", "true length=2 received=2 \"he\"", "llo", "he", "llo"},
            {"split after 3", "true length=2 received=3 \"hel\"", "lo", "hel", "lo"},
            {"split after 4", "true length=2 received=4 \"hell\"", "o", "hell", "o"},
            {"byte by byte", "true length=2 received=2 \"he\"", "llo", "h", "e", "l", "l", "o"},
        });
}

void HTTPClient_EveryCutTest::bytesBeyondTheLengthAreKeptIfInTheSamePiece()
{
    checkCutRow();
}

void HTTPClient_EveryCutTest::bodyAfterAnOlderLargerCountEndsWithTheFirstPiece_data()
{
    HTTPResponse countReached;
    countReached.contentLength = 5;
    countReached.received = 5;
    addCutRows(
        countReached,
        {
            {"whole", "true length=5 received=10 \"hello\"", "", "hello"},
            {"split after 1", "true length=5 received=6 \"h\"", "ello", "h", "ello"},
            {"split after 2", "true length=5 received=7 \"he\"", "llo", "he", "llo"},
            {"split after 3", "true length=5 received=8 \"hel\"", "lo", "hel", "lo"},
            {"split after 4", "true length=5 received=9 \"hell\"", "o", "hell", "o"},
            {"byte by byte", "true length=5 received=6 \"h\"", "ello", "h", "e", "l", "l", "o"},
        });
}

void HTTPClient_EveryCutTest::bodyAfterAnOlderLargerCountEndsWithTheFirstPiece()
{
    checkCutRow();
}

BELUN_TEST(HTTPClient_EveryCutTest)
#include "HTTPClient_EveryCutTest.moc"
