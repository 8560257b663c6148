// Valid and invalid answers to a download, split and closed at every byte: the parsed head and the
// resulting local file.
#include "tests/download/DownloadRecorder.h"
#include "tests/kit/Cuts.h"
#include "tests/kit/PacedSending.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/TestMain.h"

#include <mutex>
#include <string>
#include <vector>

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QList>

using support::Peer;
using support::Piece;
using support::ScriptedServer;
using Pieces = std::vector<Piece>;
Q_DECLARE_METATYPE(Pieces)
Q_DECLARE_METATYPE(std::vector<std::string>)
Q_DECLARE_METATYPE(std::string)

namespace {

constexpr char address[] = "192.168.1.120";
constexpr quint16 port = 80;
constexpr char name[] = "a.mp4";

using Delivery = std::vector<std::string>;

QString localPath()
{
    return QDir::homePath() + QStringLiteral("/Desktop/DCIM/") + QLatin1String(name);
}

/// The outcome of one download.
struct Outcome
{
    std::string text;       ///< Status, type in brackets, length, and the local file in quotes.
    QList<qint64> received; ///< The received bytes that each progress signal reports.
};

/// A camera that answers each request with the pieces most recently passed to setPieces().
class Camera
{
public:
    /// Downloads these pieces in the calling thread and returns the outcome.
    Outcome deliver(const Delivery& pieces)
    {
        setPieces(pieces);
        QFile::remove(localPath());
        Download download(QString::fromLatin1(name));
        download.thread.DownloadFile(QString::fromLatin1(name));

        const resp_header& head = download.thread.respHeader;
        std::string text = std::to_string(head.status_code) + " [" +
                           support::printable(head.content_type) + "] " +
                           std::to_string(head.content_length);
        QFile file(localPath());
        text += file.open(QIODevice::ReadOnly)
                    ? " \"" + support::printable(file.readAll().toStdString()) + '"'
                    : " no file";
        text += download.recorder.finished == 1 ? "" : " not finished";
        return {text, download.recorder.received};
    }

private:
    void setPieces(const Delivery& pieces)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_pieces = pieces;
    }
    Delivery pieces() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_pieces;
    }
    void answer(Peer& peer) const
    {
        peer.receiveUntil("\r\n\r\n");
        support::sendPaced(peer, pieces(), port,
                           [this] { return support::threadIsAsleep(m_downloading); });
        peer.close();
    }

    const int m_downloading = ::gettid();
    mutable std::mutex m_mutex;
    Delivery m_pieces;
    ScriptedServer m_server{[this](Peer& peer) { answer(peer); }, address, port};
};

void compare(Camera& camera, const Delivery& pieces, const std::string& expected, const char* how,
             std::size_t position)
{
    const std::string text = camera.deliver(pieces).text;
    QVERIFY2(text == expected,
             qPrintable(QStringLiteral("%1 %2: %3 instead of %4")
                            .arg(QLatin1String(how))
                            .arg(position)
                            .arg(QString::fromStdString(text), QString::fromStdString(expected))));
}

const std::string nothing = "0 [] 0 \"\"";

/// Returns a head that announces five bytes; `end` is its last piece.
Pieces headOfFive(const std::string& end)
{
    return {{"HTTP/1.1 ", nothing},
            {"2", "2 [] 0 \"\""},
            {"0", "20 [] 0 \"\""},
            {"0 OK\r\nContent-Type: ", "200 [] 0 \"\""},
            {"v", "200 [v] 0 \"\""},
            {"/", "200 [v/] 0 \"\""},
            {"4\r\nContent-Length: ", "200 [v/4] 0 \"\""},
            {"5", "200 [v/4] 5 \"\""},
            {end, "200 [v/4] 5 \"\""}};
}

} // namespace

class ResponseHead_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void deliveredWholeByteByByteAndCutAnywhere_data() { addAnswers(); }
    void deliveredWholeByteByByteAndCutAnywhere();
    void closedAnywhere_data() { addAnswers(); }
    void closedAnywhere();

    void bytesBeyondTheLengthAreKeptIfInTheSameReceive_data();
    void bytesBeyondTheLengthAreKeptIfInTheSameReceive();
    void progressIsReportedForEachReceive_data();
    void progressIsReportedForEachReceive();

private:
    static void addAnswers();
};

void ResponseHead_EveryCutTest::addAnswers()
{
    QTest::addColumn<Pieces>("pieces");
    const auto row = [](const char* title, const Pieces& head, const Pieces& body) {
        Pieces all = head;
        all.insert(all.end(), body.begin(), body.end());
        QTest::newRow(title) << all;
    };
    const Pieces hello{{"h", "200 [v/4] 5 \"h\""},
                       {"e", "200 [v/4] 5 \"he\""},
                       {"l", "200 [v/4] 5 \"hel\""},
                       {"l", "200 [v/4] 5 \"hell\""},
                       {"o", "200 [v/4] 5 \"hello\""}};
    row("recording", headOfFive("\r\n\r\n"), hello);
    row("head ended by line feeds", headOfFive("\n\n\n\n"), hello);
    row("head ended by LF LF CR LF", headOfFive("\n\n\r\n"), hello);
    row("head ended by carriage returns", headOfFive("\r\r\r\r"), hello);
    row("zero bytes in the head are left out", headOfFive(std::string("\0\r\n\0\r\n", 6)), hello);
    row("body one byte short", headOfFive("\r\n\r\n"),
        {{"h", "200 [v/4] 5 \"h\""},
         {"e", "200 [v/4] 5 \"he\""},
         {"l", "200 [v/4] 5 \"hel\""},
         {"l", "200 [v/4] 5 \"hell\""}});
    row("body of line ends and bytes outside ASCII", headOfFive("\r\n\r\n"),
        {{"\r", "200 [v/4] 5 \"\\r\""},
         {"\n", "200 [v/4] 5 \"\\r\\n\""},
         {std::string("\0", 1), "200 [v/4] 5 \"\\r\\n\\x00\""},
         {"\xFF", "200 [v/4] 5 \"\\r\\n\\x00\\xFF\""},
         {"\x80", "200 [v/4] 5 \"\\r\\n\\x00\\xFF\\x80\""}});
    row("head without its end takes the body in",
        {{"HTTP/1.1 ", nothing},
         {"4", "4 [] 0 \"\""},
         {"0", "40 [] 0 \"\""},
         {"4 Not Found\n\nContent-Length: ", "404 [] 0 \"\""},
         {"3", "404 [] 3 \"\""},
         {"\n\nabc", "404 [] 3 \"\""}},
        {});
    row("no length, no body",
        {{"HTTP/1.1 ", nothing},
         {"2", "2 [] 0 \"\""},
         {"0", "20 [] 0 \"\""},
         {"0 OK\r\n\r\nhello", "200 [] 0 \"\""}},
        {});
    row("length in small letters is none", {{"content-length: 5\r\n\r\nhello", nothing}}, {});
    row("length without a space is the next word",
        {{"Content-Length:5\r\n", nothing}, {"3", "0 [] 3 \"\""}, {"\r\n\r\n", "0 [] 3 \"\""}},
        {{"a", "0 [] 3 \"a\""}, {"b", "0 [] 3 \"ab\""}, {"c", "0 [] 3 \"abc\""}});
    row("negative length, no body",
        {{"Content-Length: -", nothing}, {"2", "0 [] -2 \"\""}, {"\r\n\r\nab", "0 [] -2 \"\""}},
        {});
    row("type of bytes outside ASCII",
        {{"Content-Type: ", nothing},
         {"\xE6", "0 [\\xE6] 0 \"\""},
         {"\xB5", "0 [\\xE6\\xB5] 0 \"\""},
         {"\xB7", "0 [\\xE6\\xB5\\xB7] 0 \"\""},
         {" x\r\n\r\n", "0 [\\xE6\\xB5\\xB7] 0 \"\""}},
        {});
    row("no head at all", {{"\r\n\r\nhello", nothing}}, {});
}

void ResponseHead_EveryCutTest::deliveredWholeByteByByteAndCutAnywhere()
{
    QFETCH(Pieces, pieces);
    const std::string bytes = support::allBytes(pieces);
    const std::string whole = pieces.back().closed;
    Camera camera;
    compare(camera, {bytes}, whole, "whole,", bytes.size());
    compare(camera, support::singleBytes(bytes), whole, "byte by byte,", bytes.size());
    for (std::size_t position = 1; position < bytes.size() && !QTest::currentTestFailed();
         ++position) {
        compare(camera, support::cut(bytes, {position}), whole, "split after", position);
    }
}

void ResponseHead_EveryCutTest::closedAnywhere()
{
    QFETCH(Pieces, pieces);
    const std::string bytes = support::allBytes(pieces);
    Camera camera;
    for (std::size_t count = 0; count <= bytes.size() && !QTest::currentTestFailed(); ++count) {
        compare(camera, count == 0 ? Delivery{} : Delivery{bytes.substr(0, count)},
                support::closedBehind(pieces, nothing, count), "closed after", count);
    }
}

// --- where a cut changes the result --------------------------------------------------------------

void ResponseHead_EveryCutTest::bytesBeyondTheLengthAreKeptIfInTheSameReceive_data()
{
    QTest::addColumn<Delivery>("pieces");
    QTest::addColumn<std::string>("file");
    const std::string head = "Content-Length: 5\r\n\r\n";
    const auto row = [](const char* title, const Delivery& pieces, const std::string& file) {
        QTest::newRow(title) << pieces << file;
    };
    row("whole", {head + "hello12"}, "hello12");
    row("split after the head", {head, "hello12"}, "hello12");
    row("split after 1", {head + "h", "ello12"}, "hello12");
    row("split after 4", {head + "hell", "o12"}, "hello12");
    row("split after the length", {head + "hello", "12"}, "hello");
    row("split after 6", {head + "hello1", "2"}, "hello1");
    row("byte by byte", support::singleBytes(head + "hello12"), "hello");
}

void ResponseHead_EveryCutTest::bytesBeyondTheLengthAreKeptIfInTheSameReceive()
{
    QFETCH(Delivery, pieces);
    QFETCH(std::string, file);
    QCOMPARE(QString::fromStdString(Camera().deliver(pieces).text),
             QString::fromStdString("0 [] 5 \"" + file + '"'));
}

void ResponseHead_EveryCutTest::progressIsReportedForEachReceive_data()
{
    QTest::addColumn<Delivery>("pieces");
    QTest::addColumn<QList<qint64>>("received");
    const std::string head = "Content-Length: 5\r\n\r\n";
    const auto row = [](const char* title, const Delivery& pieces, const QList<qint64>& received) {
        QTest::newRow(title) << pieces << received;
    };
    row("whole", {head + "hello"}, {5});
    row("cut in the head", {head.substr(0, 9), head.substr(9) + "hello"}, {5});
    row("split after the head", {head, "hello"}, {5});
    row("split after 1", {head + "h", "ello"}, {1, 5});
    row("split after 2", {head + "he", "llo"}, {2, 5});
    row("split after 3", {head + "hel", "lo"}, {3, 5});
    row("split after 4", {head + "hell", "o"}, {4, 5});
    row("byte by byte", support::singleBytes(head + "hello"), {1, 2, 3, 4, 5});
    row("nothing but the head", {head}, {});
}

void ResponseHead_EveryCutTest::progressIsReportedForEachReceive()
{
    QFETCH(Delivery, pieces);
    QFETCH(QList<qint64>, received);
    QCOMPARE(Camera().deliver(pieces).received, received);
}

BELUN_NETWORK_TEST(ResponseHead_EveryCutTest)
#include "ResponseHead_EveryCutTest.moc"
