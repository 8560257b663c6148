// What the window shows after a browse whose answers arrive in two pieces, split anywhere, or end
// anywhere. One response record serves all exchanges of a window and its received count is not
// reset, so a split near the end of a later answer ends that answer.
#include "tests/kit/Cuts.h"
#include "tests/kit/PacedSending.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <string>
#include <vector>

#include <unistd.h>

#include <QVector>

using support::Peer;
using support::ScriptedServer;
using support::Step;

namespace {

constexpr char address[] = "192.168.1.120";
constexpr quint16 port = 80;

using Pieces = std::vector<std::string>;

/// The camera's three answers, one of which is delivered in pieces.
struct Answers
{
    std::string count;
    std::string list;
    std::string details;
};

const std::string& answerTo(const QByteArray& head, const Answers& answers)
{
    return head.contains("getfilecount")  ? answers.count
           : head.contains("getfilelist") ? answers.list
                                          : answers.details;
}

/// Returns what the table of a new window shows after a browse: rows in brackets, cells separated
/// by bars.
QString browsed(const Answers& answers, const char* command, const Pieces& pieces)
{
    const int window = ::gettid();
    ScriptedServer camera(
        [&](Peer& peer) {
            const QByteArray head = peer.receiveUntil("\r\n\r\n");
            if (head.contains(command)) {
                support::sendPaced(peer, pieces, port,
                                   [window] { return support::threadIsAsleep(window); });
            } else {
                peer.send(QByteArray::fromStdString(answerTo(head, answers)));
            }
            peer.close();
        },
        address, port);
    const UserWindow user;
    user.clickBrowse();
    QString shown;
    for (int row = 0; row < user.table().rowCount(); ++row) {
        shown += '[' + user.row(row).join(QLatin1Char('|')) + ']';
    }
    return shown;
}

void compare(const Answers& answers, const char* command, const Pieces& pieces,
             const QString& expected, const char* how, std::size_t position)
{
    const QString shown = browsed(answers, command, pieces);
    QVERIFY2(shown == expected, qPrintable(QStringLiteral("%1 %2: %3 instead of %4")
                                               .arg(QLatin1String(how))
                                               .arg(position)
                                               .arg(shown, expected)));
}

void checkEveryCut(const Answers& answers, const char* command, const QString& byteByByte,
                   const QVector<Step>& cutBehind, const QVector<Step>& closedBehind)
{
    const std::string bytes = answerTo(command, answers);
    compare(answers, command, support::singleBytes(bytes), byteByByte, "byte by byte,",
            bytes.size());
    for (std::size_t position = 1; position < bytes.size() && !QTest::currentTestFailed();
         ++position) {
        compare(answers, command, support::cut(bytes, {position}),
                support::outcomeAt(cutBehind, position), "split after", position);
    }
    for (std::size_t count = 0; count <= bytes.size() && !QTest::currentTestFailed(); ++count) {
        compare(answers, command, count == 0 ? Pieces{} : Pieces{bytes.substr(0, count)},
                support::outcomeAt(closedBehind, count), "closed after", count);
    }
}

} // namespace

class Browse_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void countAnswerIsWholeOrNone();
    void listAnswerEndsWithACutNearItsEnd();
    void detailsEndWithACutInTheirSecondHalf();
};

// 38 bytes of head, 5 of body.
void Browse_EveryCutTest::countAnswerIsWholeOrNone()
{
    const Answers answers{"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n=\"1\";",
                          "HTTP/1.1 200 OK\r\nContent-Length: 13\r\n\r\nZEPNA/a.mp4;\r",
                          "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\ntime=\"3\";"};
    const QString row = QStringLiteral("[a.mp4|--  ::|KB|3s]");
    checkEveryCut(answers, "getfilecount", row, {{1, row}}, {{43, row}});
}

// 39 bytes of head, 25 of body. The received count still includes the 5 bytes of the count answer,
// so 20 bytes of the list reach the announced length.
void Browse_EveryCutTest::listAnswerEndsWithACutNearItsEnd()
{
    const Answers answers{"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n=\"2\";",
                          "HTTP/1.1 200 OK\r\nContent-Length: 25\r\n\r\nZEPNA/a.mp4;ZEPNA/b.mp4;\r",
                          "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\ntime=\"3\";"};
    const QString both = QStringLiteral("[a.mp4|--  ::|KB|3s][b.mp4|--  ::|KB|3s]");
    const QString second = QStringLiteral("[a.mp4|--  ::|KB|3s][|--  ::|KB|3s]");
    checkEveryCut(answers, "getfilelist", second, {{1, both}, {59, second}, {63, both}},
                  {{59, second}, {63, both}});
}

// 39 bytes of head, 45 of body. The received count still includes 18 bytes of the earlier answers,
// so 27 bytes of this body reach the announced length.
void Browse_EveryCutTest::detailsEndWithACutInTheirSecondHalf()
{
    const Answers answers{"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n=\"1\";",
                          "HTTP/1.1 200 OK\r\nContent-Length: 13\r\n\r\nZEPNA/a.mp4;\r",
                          "HTTP/1.1 200 OK\r\nContent-Length: 45\r\n\r\n"
                          "create=\"20200131124502\";size=\"4096\";time=\"3\";"};
    const QString whole = QStringLiteral("[a.mp4|2020-01-31  12:45:02|4KB|3s]");
    const QString noSize = QStringLiteral("[a.mp4|2020-01-31  12:45:02|858MB|858s]");
    const QString noTime = QStringLiteral("[a.mp4|2020-01-31  12:45:02|4KB|4s]");
    checkEveryCut(answers, "getfileinfo", noSize, {{1, whole}, {66, noSize}, {75, noTime}},
                  {{0, "[a.mp4|||]"}, {66, noSize}, {75, noTime}, {84, whole}});
}

BELUN_NETWORK_TEST(Browse_EveryCutTest)
#include "Browse_EveryCutTest.moc"
