#include "verify/AnswerReader.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

using verify::AnswerReader;
using State = AnswerReader::State;

Q_DECLARE_METATYPE(State)

namespace {

constexpr std::uint64_t bodyLimit = 1000;
const QByteArray ok = "HTTP/1.1 200 OK\r\n";

/// The result of reading an answer.
struct Read
{
    State state = State::Head;
    int status = 0;
    QByteArray body;
    quint64 announced = 0;
    bool headSeen = false;
};

/// Returns the result of reading an answer in pieces from a connection that then closes.
Read readInPieces(const QByteArray& answer, int piece, bool stopAtHead = false)
{
    Read read;
    AnswerReader reader(bodyLimit, {[&read, stopAtHead](std::optional<std::uint64_t> announced) {
                                        read.headSeen = true;
                                        read.announced = announced.value_or(0);
                                        return !stopAtHead;
                                    },
                                    [&read](std::string_view bytes) {
                                        read.body.append(bytes.data(), int(bytes.size()));
                                        return true;
                                    }});
    for (int i = 0; i < answer.size(); i += piece) {
        reader.receive(answer.mid(i, piece).toStdString());
    }
    reader.closed();
    read.state = reader.state();
    read.status = reader.status();
    return read;
}

} // namespace

class AnswerReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void answersAreReadInEveryCut_data();
    void answersAreReadInEveryCut();
    void headOfTheLimitIsRead();
    void unendingHeadIsRefused();
    void unendingChunkLinesAreRefused();
    void manyChunksAreReadWithoutALimitOfTheirLines();
    void headComesBeforeTheBody();
    void handlerEndsTheReading();
    void whatFollowsTheAnswerIsSeen();
};

void AnswerReaderTest::answersAreReadInEveryCut_data()
{
    const support::Rows<QByteArray, State, QByteArray> rows("answer", "state", "body");
    const auto row = [&rows](const char* tag, const QByteArray& answer, State state,
                             const QByteArray& body = {}) { rows(tag, answer, state, body); };
    const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";

    row("length", ok + "Content-Length: 5\r\n\r\nhello", State::Complete, "hello");
    row("length zero", ok + "Content-Length: 0\r\n\r\n", State::Complete);
    row("name in lower case", ok + "content-length:5\r\n\r\nhello", State::Complete, "hello");
    row("spaces around the value", ok + "Content-Length: \t5 \r\n\r\nhello", State::Complete,
        "hello");
    row("more than announced", ok + "Content-Length: 3\r\n\r\nhello", State::Complete, "hel");
    row("up to the end", ok + "\r\nhello", State::Complete, "hello");
    row("nothing up to the end", ok + "\r\n", State::Complete);
    row("chunks", chunked + "3\r\nhel\r\n2;x=y\r\nlo\r\n0\r\n\r\n", State::Complete, "hello");
    row("chunks in capitals",
        ok + "transfer-encoding: Chunked\r\n\r\nA\r\n0123456789\r\n0\r\nX: 1\r\n\r\n",
        State::Complete, "0123456789");
    row("chunks and a length",
        ok + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n",
        State::Complete, "abc");
    row("same length twice", ok + "Content-Length: 5\r\nContent-Length: 5\r\n\r\nhello",
        State::Complete, "hello");
    row("no reason", "HTTP/1.1 200\r\nContent-Length: 2\r\n\r\nok", State::Complete, "ok");
    row("older protocol", "HTTP/1.0 200 OK\r\n\r\nok", State::Complete, "ok");
    row("interim answer first",
        "HTTP/1.1 100 Continue\r\nContent-Length: 9\r\n\r\n" + ok + "Content-Length: 2\r\n\r\nok",
        State::Complete, "ok");
    row("head ends in LF LF CR LF", ok + "Content-Length: 2\n\n\r\nok", State::Complete, "ok");
    row("line without a colon", ok + "nothing\r\nContent-Length: 2\r\n\r\nok", State::Complete,
        "ok");

    row("cut in the head", ok + "Content-Le", State::Cut);
    row("cut before the body", ok + "Content-Length: 5\r\n\r\n", State::Cut);
    row("cut in the body", ok + "Content-Length: 5\r\n\r\nhell", State::Cut, "hell");
    row("cut in a chunk", chunked + "3\r\nhe", State::Cut, "he");
    row("cut before the last chunk", chunked + "3\r\nhel\r\n", State::Cut, "hel");
    row("cut before the trailer's end", chunked + "0\r\n", State::Cut);
    row("nothing", "", State::Cut);
    row("line feeds alone", "HTTP/1.1 200 OK\nContent-Length: 2\n\nok", State::Cut);

    row("not found", "HTTP/1.1 404 Not Found\r\nContent-Length: 2\r\n\r\nno", State::Refused);
    row("no content", "HTTP/1.1 204 No Content\r\n\r\n", State::Refused);
    row("no protocol", "var count=\"3\";\r\n", State::BadHead);
    row("status of letters", "HTTP/1.1 abc OK\r\n\r\n", State::BadHead);
    row("status of four digits", "HTTP/1.1 2000 OK\r\n\r\n", State::BadHead);
    row("status of two digits", "HTTP/1.1 99 OK\r\n\r\n", State::BadHead);
    row("no status", "HTTP/1.1\r\n\r\n", State::BadHead);
    row("two lengths", ok + "Content-Length: 5\r\nContent-Length: 6\r\n\r\nhello!", State::BadHead);
    row("negative length", ok + "Content-Length: -1\r\n\r\n", State::BadHead);
    row("length of letters", ok + "Content-Length: x\r\n\r\n", State::BadHead);
    row("length beyond 64 bits", ok + "Content-Length: 18446744073709551616\r\n\r\n",
        State::BadHead);
    row("other coding", ok + "Transfer-Encoding: gzip\r\n\r\n", State::BadHead);
    row("two codings", ok + "Transfer-Encoding: gzip, chunked\r\n\r\n", State::BadHead);

    row("length beyond the limit", ok + "Content-Length: 1001\r\n\r\n", State::BodyTooLong);
    row("length of the limit", ok + "Content-Length: 1000\r\n\r\n" + QByteArray(1000, 'x'),
        State::Complete, QByteArray(1000, 'x'));
    row("chunk beyond the limit", chunked + "3e9\r\n", State::BodyTooLong);
    row("chunks beyond the limit", chunked + "1\r\nx\r\n3e8\r\n", State::BodyTooLong, "x");
    row("largest chunk", chunked + "ffffffffffffffff\r\n", State::BodyTooLong);

    row("chunk size of letters", chunked + "zz\r\n", State::BadBody);
    row("no chunk size", chunked + "\r\n", State::BadBody);
    row("negative chunk size", chunked + "-1\r\n", State::BadBody);
    row("no line end after a chunk", chunked + "1\r\nxy\r\n", State::BadBody, "x");
}

void AnswerReaderTest::answersAreReadInEveryCut()
{
    QFETCH(QByteArray, answer);
    for (const int piece : {1, 2, 3, 7, 1 << 20}) {
        const Read read = readInPieces(answer, piece);
        QTEST(read.state, "state");
        QTEST(read.body, "body");
    }
}

void AnswerReaderTest::headOfTheLimitIsRead()
{
    const QByteArray start = ok + "X: ";
    const QByteArray end = "\r\nContent-Length: 0\r\n\r\n";
    const int room = int(AnswerReader::headLimit) - int(start.size()) - int(end.size());
    QCOMPARE(readInPieces(start + QByteArray(room, 'x') + end, 1000).state, State::Complete);
    QCOMPARE(readInPieces(start + QByteArray(room + 1, 'x') + end, 1000).state, State::HeadTooLong);
}

void AnswerReaderTest::unendingHeadIsRefused()
{
    QCOMPARE(readInPieces(QByteArray(1 << 20, 'x'), 4096).state, State::HeadTooLong);
    QByteArray lines = ok;
    while (lines.size() < 1 << 17) {
        lines += "X: y\r\n";
    }
    QCOMPARE(readInPieces(lines, 4096).state, State::HeadTooLong);
    QByteArray interim;
    while (interim.size() < 1 << 17) {
        interim += "HTTP/1.1 100 Continue\r\n\r\n";
    }
    QCOMPARE(readInPieces(interim, 4096).state, State::HeadTooLong);
}

void AnswerReaderTest::unendingChunkLinesAreRefused()
{
    const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    QCOMPARE(readInPieces(chunked + "1;" + QByteArray(1 << 17, 'x'), 4096).state, State::BadBody);
    QByteArray trailers = chunked + "0\r\n";
    while (trailers.size() < 1 << 17) {
        trailers += "X: y\r\n";
    }
    QCOMPARE(readInPieces(trailers, 4096).state, State::BadBody);
}

void AnswerReaderTest::manyChunksAreReadWithoutALimitOfTheirLines()
{
    quint64 received = 0;
    AnswerReader reader(~std::uint64_t(0), {[](std::optional<std::uint64_t>) { return true; },
                                            [&received](std::string_view bytes) {
                                                received += bytes.size();
                                                return true;
                                            }});
    reader.receive((ok + "Transfer-Encoding: chunked\r\n\r\n").toStdString());
    for (int i = 0; i < 100000; ++i) {
        reader.receive("1;extension\r\nx\r\n");
    }
    reader.receive("0\r\n\r\n");
    QCOMPARE(reader.state(), State::Complete);
    QCOMPARE(received, quint64(100000));
}

void AnswerReaderTest::headComesBeforeTheBody()
{
    const Read read = readInPieces(ok + "Content-Length: 5\r\n\r\nhello", 1 << 20, true);
    QCOMPARE(read.state, State::Stopped);
    QCOMPARE(read.announced, quint64(5));
    QCOMPARE(read.body, QByteArray());
    QVERIFY(!readInPieces("HTTP/1.1 404 No\r\nContent-Length: 5\r\n\r\n", 1 << 20).headSeen);
    QCOMPARE(readInPieces("HTTP/1.1 404 No\r\n\r\n", 1 << 20).status, 404);
}

void AnswerReaderTest::handlerEndsTheReading()
{
    int pieces = 0;
    AnswerReader reader(bodyLimit, {[](std::optional<std::uint64_t>) { return true; },
                                    [&pieces](std::string_view) { return ++pieces < 2; }});
    reader.receive((ok + "\r\n").toStdString());
    for (int i = 0; i < 5; ++i) {
        reader.receive("x");
    }
    QCOMPARE(reader.state(), State::Stopped);
    QCOMPARE(pieces, 2);
}

void AnswerReaderTest::whatFollowsTheAnswerIsSeen()
{
    for (const int more : {0, 1, 9}) {
        AnswerReader reader(bodyLimit, {[](std::optional<std::uint64_t>) { return true; },
                                        [](std::string_view) { return true; }});
        reader.receive((ok + "Content-Length: 2\r\n\r\nok" + QByteArray(more, 'x')).toStdString());
        QCOMPARE(reader.state(), State::Complete);
        QCOMPARE(reader.hasMore(), more > 0);
    }
}

BELUN_TEST(AnswerReaderTest)

#include "AnswerReaderTest.moc"
