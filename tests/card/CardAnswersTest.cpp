// Limits of the count and of the list walk. CardAnswers_EveryCutTest plays the answers.
#include "card/CardAnswers.h"

#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"

#include <algorithm>
#include <string>
#include <vector>

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTest>

class CardAnswersTest : public QObject
{
    Q_OBJECT

private slots:
    void scratchHoldsTheAnswerAndStartsZeroed_data();
    void scratchHoldsTheAnswerAndStartsZeroed();

    void countTextGivesTheNumberOfFilesToQuery_data();
    void countTextGivesTheNumberOfFilesToQuery();

    void longListIsWalkedToItsEnd();
    void walkTakesLinearTime_data();
    void walkTakesLinearTime();
};

void CardAnswersTest::scratchHoldsTheAnswerAndStartsZeroed_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("size");

    QTest::newRow("empty answer") << 0 << 32;
    QTest::newRow("31 bytes and the zero") << 31 << 32;
    QTest::newRow("32 bytes and the zero") << 32 << 33;
    QTest::newRow("a long answer") << 100000 << 100001;
}

void CardAnswersTest::scratchHoldsTheAnswerAndStartsZeroed()
{
    QFETCH(int, answer);
    QFETCH(int, size);
    const std::vector<char> scratch =
        card::scratchFor(std::string(static_cast<std::size_t>(answer), 'x'));
    QVERIFY2(scratch.size() >= static_cast<std::size_t>(size),
             QByteArray::number(static_cast<int>(scratch.size())).constData());
    QVERIFY(std::count(scratch.begin(), scratch.end(), '\0') ==
            static_cast<std::ptrdiff_t>(scratch.size()));
}

void CardAnswersTest::countTextGivesTheNumberOfFilesToQuery_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("listed");
    QTest::addColumn<int>("asked");

    const auto row = [](const char* tag, const QByteArray& text, int listed, int asked) {
        QTest::newRow(tag) << text << listed << asked;
    };
    row("as many as listed", "3", 3, 3);
    row("more than listed", "3", 2, 3);
    row("fewer than listed", "2", 3, 2);
    row("more than the rows", "200", 128, 200);
    row("none, none listed", "0", 0, 0);
    row("none, some listed", "0", 3, 0);
    row("no text", "", 3, 0);
    row("abc", "abc", 3, 0);
    row("letters after the digits", "5 files", 3, 5);
    row("negative", "-5", 3, 0);
    row("smallest int", "-2147483648", 3, 0);
    row("full name table", "9999", 3, 9999);
    row("one more than the name table", "10000", 3, 3);
    row("largest int", "2147483647", 3, 3);
    row("one above the largest int", "2147483648", 3, 3);
    row("one below the smallest int", "-2147483649", 3, 3);
    row("a multiple of 2^32", "4294967296", 3, 3);
    row("2^32 and 5", "4294967301", 3, 3);
    row("creation time whose low 32 bits are positive", "20200131124502", 3, 3);
    row("creation time whose low 32 bits are negative", "20210615093000", 3, 3);
    row("creation time, nothing listed", "20210615093000", 0, 0);
    row("forty digits", QByteArray(40, '7'), 3, 3);
    row("forty digits with a minus sign", '-' + QByteArray(40, '7'), 3, 3);
    row("forty zeros", QByteArray(40, '0'), 3, 0);
    row("forty zeros and a 4", QByteArray(40, '0') + '4', 3, 4);
}

void CardAnswersTest::countTextGivesTheNumberOfFilesToQuery()
{
    QFETCH(QByteArray, text);
    QFETCH(int, listed);
    const int asked = card::filesToAskAbout(text.constData(), listed);
    QTEST(asked, "asked");
}

void CardAnswersTest::longListIsWalkedToItsEnd()
{
    QByteArray answer;
    for (int number = 0; number < 12000; ++number) {
        answer += "sd/DCIM/100ZEPNA/F" + QByteArray::number(number) + ".mp4;";
    }
    answer += "\r\n";
    card::FileListWalk walk(answer.constData());
    for (int number = 0; number < 12000; ++number) {
        const auto entry = walk.next();
        QVERIFY(entry && entry->name);
        QCOMPARE(QByteArray::fromStdString(std::string(*entry->name)),
                 "F" + QByteArray::number(number) + ".mp4");
    }
    QVERIFY(!walk.next());
}

void CardAnswersTest::walkTakesLinearTime_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("no name at all") << QByteArray();
    QTest::newRow("a name that never ends") << QByteArray("ZEPNA/");
    QTest::newRow("one name, after all other entries") << QByteArray("ZEPNA/a.mp4;");
}

// A walk that searched the rest of the text again for each entry would take minutes.
void CardAnswersTest::walkTakesLinearTime()
{
    QFETCH(QByteArray, end);
    constexpr int entries = 300000;
    const QByteArray answer = QByteArray(entries, ';') + end + QByteArray(entries, 'x');
    card::FileListWalk walk(answer.constData());
    QElapsedTimer time;
    time.start();
    int count = 0;
    while (walk.next()) {
        ++count;
    }
    QVERIFY(count > entries);
    QVERIFY2(time.elapsed() < 1000 * support::timeFactor(),
             qPrintable(QString::number(time.elapsed()) + " ms"));
}

BELUN_TEST(CardAnswersTest)

#include "CardAnswersTest.moc"
