// Marker search, count and list walk. The lists are recorded answers, one case per file.
#include "card/CardAnswers.h"

#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QIODevice>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>

class CardAnswersTest : public QObject
{
    Q_OBJECT

private slots:
    void textIsBetweenTheFirstMarkers_data();
    void textIsBetweenTheFirstMarkers();
    void missingMarkerGivesNoText_data();
    void missingMarkerGivesNoText();

    void scratchHoldsTheAnswerAndStartsZeroed_data();
    void scratchHoldsTheAnswerAndStartsZeroed();

    void countTextGivesTheNumberOfFilesToQuery_data();
    void countTextGivesTheNumberOfFilesToQuery();

    void listAnswerBecomesEntries_data();
    void listAnswerBecomesEntries();
    void longListIsWalkedToItsEnd();
    void walkTakesLinearTime_data();
    void walkTakesLinearTime();
    void answerCutAnywhereIsReadToItsEnd();

private:
    /// Returns the names in entry order, with "none" for an entry without a name.
    static QStringList namesIn(const char* answer)
    {
        QStringList names;
        card::FileListWalk walk(answer);
        while (const auto entry = walk.next()) {
            names.append(entry->name ? QString::fromStdString(std::string(*entry->name)) : "none");
        }
        return names;
    }
};

void CardAnswersTest::textIsBetweenTheFirstMarkers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<QByteArray>("text");

    const auto row = [](const char* tag, const char* answer, const char* left, const char* right,
                        const char* text) {
        QTest::newRow(tag) << QByteArray(answer) << QByteArray(left) << QByteArray(right)
                           << QByteArray(text);
    };
    row("count", "var count=\"12\";\r\n", "=\"", "\";", "12");
    row("nothing before, nothing after", "=\"12\";", "=\"", "\";", "12");
    row("nothing between", "count=\"\";", "=\"", "\";", "");
    row("first of two", "a=\"1\";b=\"2\";", "=\"", "\";", "1");
    row("second key", "size=\"1\";time=\"2\";", "time=\"", "\";", "2");
    row("right marker before the left one", "\";\";=\"5\";", "=\"", "\";", "5");
    row("left marker inside the text", "=\"=\"7\";", "=\"", "\";", "=\"7");
    row("half a right marker inside the text", "=\"1\"2;3\";", "=\"", "\";", "1\"2;3");
    row("key as the end of another", "mysize=\"3\";size=\"4\";", "size=\"", "\";", "3");
    row("older text first", "create=\"20200131124502\";count=\"3\";", "=\"", "\";",
        "20200131124502");
    row("longer than 32 bytes", "=\"0123456789012345678901234567890123456789\";", "=\"", "\";",
        "0123456789012345678901234567890123456789");
}

void CardAnswersTest::textIsBetweenTheFirstMarkers()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, left);
    QFETCH(QByteArray, right);
    const auto text = card::textBetween(answer.constData(), left.constData(), right.constData());
    QVERIFY(text.has_value());
    QTEST(QByteArray(text->data(), static_cast<int>(text->size())), "text");
}

void CardAnswersTest::missingMarkerGivesNoText_data()
{
    QTest::addColumn<QByteArray>("answer");

    QTest::newRow("empty answer") << QByteArray("");
    QTest::newRow("neither marker") << QByteArray("12\r\n");
    QTest::newRow("left one missing") << QByteArray("count=12\";");
    QTest::newRow("right one missing") << QByteArray("count=\"12");
    QTest::newRow("right one before the left one only") << QByteArray("\";count=\"12");
    QTest::newRow("right one cut") << QByteArray("count=\"12\"");
    QTest::newRow("after a zero byte") << QByteArray("count=\"12\0\";", 12);
}

void CardAnswersTest::missingMarkerGivesNoText()
{
    QFETCH(QByteArray, answer);
    QVERIFY(!card::textBetween(answer.constData(), "=\"", "\";").has_value());
}

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

void CardAnswersTest::listAnswerBecomesEntries_data()
{
    QTest::addColumn<QStringList>("rows");

    const auto row = [](const char* file, const QStringList& rows) { QTest::newRow(file) << rows; };
    const QString first = QStringLiteral("BELUN_0001.mp4");
    const QString second = QStringLiteral("BELUN_0002.mp4");
    const QString third = QStringLiteral("BELUN_0003.mp4");
    row("three-recordings", {first, second, "BELUN_0003.jpg"});
    row("empty-card", {});
    row("return-first-then-entries", {});
    row("no-bytes", {});
    row("no-end", {first, second});
    row("last-entry-cut-in-name", {first, "none"});
    row("last-entry-cut-in-folder", {first, "none"});
    // The search for the folder continues past the semicolon.
    row("entry-without-folder", {first, third, third});
    row("last-entry-without-folder", {first, "none"});
    row("semicolons-only", {"none", "none", "none"});
    row("semicolon-at-end-only", {"none"});
    row("empty-name", {"", second});
    row("line-feed-between-entries", {first, second});
    row("return-between-entries", {first});
    row("return-inside-name", {"BELUN\r01.mp4"});
    row("zero-byte-ends", {first});
    row("spaces-and-ampersands", {"dive 1 & 2.mp4", "a=b?c%20d.mp4"});
    row("folder-twice-in-entry", {"sd/DCIM/100ZEPNA/BELUN_0001.mp4"});
    row("utf8-name", {QStringLiteral("深海 é.mp4")});
    row("error-page", {"none"});
}

void CardAnswersTest::listAnswerBecomesEntries()
{
    QFile recorded(
        QStringLiteral(TEST_DATA "/filelist/%1.txt").arg(QLatin1String(QTest::currentDataTag())));
    QVERIFY2(recorded.open(QIODevice::ReadOnly), qPrintable(recorded.fileName()));
    const QByteArray answer = recorded.readAll();
    const QStringList rows = namesIn(answer.constData());
    QTEST(rows, "rows");
}

void CardAnswersTest::longListIsWalkedToItsEnd()
{
    QByteArray answer;
    for (int number = 0; number < 12000; ++number) {
        answer += "sd/DCIM/100ZEPNA/F" + QByteArray::number(number) + ".mp4;";
    }
    answer += "\r\n";
    const QStringList names = namesIn(answer.constData());
    QCOMPARE(names.size(), 12000);
    QCOMPARE(names.first(), QStringLiteral("F0.mp4"));
    QCOMPARE(names.last(), QStringLiteral("F11999.mp4"));
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

void CardAnswersTest::answerCutAnywhereIsReadToItsEnd()
{
    const QByteArray whole = "ZEPNA/BELUN_0001.mp4;ZEPNA/BELUN_0002.mp4;\r\n";
    for (int length = 0; length <= whole.size(); ++length) {
        // An exact-size block, so that a memory checker detects reads past its end.
        const std::unique_ptr<char[]> cut(new char[static_cast<std::size_t>(length) + 1]());
        std::memcpy(cut.get(), whole.constData(), static_cast<std::size_t>(length));
        QStringList expected;
        if (length > 0) {
            expected.append(length < 21 ? "none" : "BELUN_0001.mp4");
        }
        if (length > 21) {
            expected.append(length < 42 ? "none" : "BELUN_0002.mp4");
        }
        QCOMPARE(namesIn(cut.get()), expected);
    }
}

BELUN_TEST(CardAnswersTest)

#include "CardAnswersTest.moc"
