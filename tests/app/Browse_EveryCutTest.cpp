// What the window shows after a browse in which one answer arrives byte by byte, is split anywhere
// or ends anywhere. One response record serves all exchanges of a window and its received count is
// not reset, so a split near the end of a later answer ends that answer.
#include "tests/app/Scene.h"
#include "tests/app/WindowPlay.h"
#include "tests/kit/Cuts.h"
#include "tests/kit/PacedSending.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/TestMain.h"

#include <string>
#include <vector>

#include <unistd.h>

#include <QVector>

using support::Peer;
using support::Step;

namespace {

using Pieces = std::vector<std::string>;

/// The bodies of the camera's three answers, one of which is delivered in pieces.
struct Answers
{
    QByteArray count;
    QByteArray list;
    QByteArray details;
};

/// Returns what the table of a new window shows after a browse.
QString browsed(const Answers& answers, const char* cutTarget, const Pieces& pieces)
{
    fake::Camera camera;
    camera.answer(fake::countTarget, answers.count);
    camera.answer(fake::listTarget, answers.list);
    camera.answer(fake::infoTarget, answers.details);
    camera.on(cutTarget, [&pieces, window = ::gettid()](Peer& peer) {
        support::sendPaced(peer, pieces, fake::cameraPort,
                           [window] { return support::threadIsAsleep(window); });
    });
    const UserWindow user;
    user.clickBrowse();
    return shownTable(user);
}

/// Delivers the answer to one target byte by byte, split after every byte and closed after every
/// byte, and compares the table.
void checkEveryCut(const Answers& answers, const char* cutTarget, const QByteArray& body,
                   const QString& byteByByte, const QVector<Step>& splitAfter,
                   const QVector<Step>& closedAfter)
{
    const std::string bytes = fake::withLength(body).toStdString();
    const auto compare = [&](const Pieces& pieces, const QString& expected, const QString& how) {
        const QString shown = browsed(answers, cutTarget, pieces);
        QVERIFY2(shown == expected,
                 qPrintable(QStringLiteral("%1: %2 instead of %3").arg(how, shown, expected)));
    };
    compare(support::singleBytes(bytes), byteByByte, "byte by byte");
    for (std::size_t at = 1; at < bytes.size() && !QTest::currentTestFailed(); ++at) {
        compare(support::cut(bytes, {at}), support::outcomeAt(splitAfter, at),
                QStringLiteral("split after %1").arg(at));
    }
    for (std::size_t at = 0; at <= bytes.size() && !QTest::currentTestFailed(); ++at) {
        compare({bytes.substr(0, at)}, support::outcomeAt(closedAfter, at),
                QStringLiteral("closed after %1").arg(at));
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
    const Answers answers{"=\"1\";", "ZEPNA/a.mp4;\r", "time=\"3\";"};
    const QString row = QStringLiteral("[a.mp4|--  ::|KB|3s]");
    checkEveryCut(answers, fake::countTarget, answers.count, row, {{1, row}},
                  {{0, "no rows"}, {43, row}});
}

// 39 bytes of head, 25 of body. The received count still includes the 5 bytes of the count answer,
// so 20 bytes of the list reach the announced length.
void Browse_EveryCutTest::listAnswerEndsWithACutNearItsEnd()
{
    const Answers answers{"=\"2\";", "ZEPNA/a.mp4;ZEPNA/b.mp4;\r", "time=\"3\";"};
    const QString both = QStringLiteral("[a.mp4|--  ::|KB|3s][b.mp4|--  ::|KB|3s]");
    const QString second = QStringLiteral("[a.mp4|--  ::|KB|3s][|--  ::|KB|3s]");
    checkEveryCut(answers, fake::listTarget, answers.list, second,
                  {{1, both}, {59, second}, {63, both}},
                  {{0, "no rows"}, {59, second}, {63, both}});
}

// 39 bytes of head, 45 of body. The received count still includes 18 bytes of the earlier answers,
// so 27 bytes of this body reach the announced length.
void Browse_EveryCutTest::detailsEndWithACutInTheirSecondHalf()
{
    const Answers answers{"=\"1\";", "ZEPNA/a.mp4;\r",
                          "create=\"20200131124502\";size=\"4096\";time=\"3\";"};
    const QString whole = QStringLiteral("[a.mp4|2020-01-31  12:45:02|4KB|3s]");
    const QString noSize = QStringLiteral("[a.mp4|2020-01-31  12:45:02|858MB|858s]");
    const QString noTime = QStringLiteral("[a.mp4|2020-01-31  12:45:02|4KB|4s]");
    checkEveryCut(answers, fake::infoTarget, answers.details, noSize,
                  {{1, whole}, {66, noSize}, {75, noTime}},
                  {{0, "[a.mp4]"}, {66, noSize}, {75, noTime}, {84, whole}});
}

BELUN_NETWORK_TEST(Browse_EveryCutTest)
#include "Browse_EveryCutTest.moc"
