// Marker search, count, list walk. The lists are recorded answers, one case per file.
#include "card/CardAnswers.h"

#include "tests/support/TestMain.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>

#include <QByteArray>
#include <QFile>
#include <QIODevice>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>

using card::NameTable;

class CardAnswersTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void textStandsBetweenTheFirstMarkers_data();
    void textStandsBetweenTheFirstMarkers();
    void missingMarkerGivesNoText_data();
    void missingMarkerGivesNoText();

    void scratchHoldsTheAnswerAndStartsZeroed_data();
    void scratchHoldsTheAnswerAndStartsZeroed();

    void leadingDigitsAreTheNumber_data();
    void leadingDigitsAreTheNumber();

    void countTextSaysForHowManyFilesToAsk_data();
    void countTextSaysForHowManyFilesToAsk();

    void listAnswerBecomesRows_data();
    void listAnswerBecomesRows();
    void rowsFillTheNameTableFromSlotZero();
    void slotsBehindTheListKeepTheirText();
    void nameOf29CharactersFitsItsSlot();
    void longNameRunsIntoTheNextSlot();
    void longNamesAndTheirFollowersAreAllShownWhole();
    void rowsEndWhereTheRowNumberTurnsNegative_data();
    void rowsEndWhereTheRowNumberTurnsNegative();
    void hugeNameInTheLastRowStaysInTheTable();
    void answerCutAnywhereIsReadToItsEnd();

private:
    static QByteArray entry(const QByteArray& name) { return "sd/DCIM/100ZEPNA/" + name + ";"; }
    static QByteArray numbered(int number) { return "F" + QByteArray::number(number) + ".mp4"; }

    QStringList read(const QByteArray& answer)
    {
        QStringList rows;
        for (const std::string& row : card::readFileList(answer.constData(), *m_names)) {
            rows.append(QString::fromStdString(row));
        }
        return rows;
    }
    QByteArray slot(int number) const { return (*m_names)[number]; }

    std::unique_ptr<NameTable> m_names;
};

/// Slots 0 to 9 and a few behind them hold what an earlier browse left there.
void CardAnswersTest::init()
{
    m_names = std::make_unique<NameTable>();
    for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 127, 128, 129, 199, 9871, 9998}) {
        m_names->store(number, ("old" + std::to_string(number)));
    }
}

void CardAnswersTest::textStandsBetweenTheFirstMarkers_data()
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
    row("nothing before, nothing behind", "=\"12\";", "=\"", "\";", "12");
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

void CardAnswersTest::textStandsBetweenTheFirstMarkers()
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
    QTest::newRow("behind a zero byte") << QByteArray("count=\"12\0\";", 12);
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

void CardAnswersTest::leadingDigitsAreTheNumber_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("number");

    QTest::newRow("plain") << QByteArray("1572864") << 1572864;
    QTest::newRow("zero") << QByteArray("0") << 0;
    QTest::newRow("negative") << QByteArray("-2048") << -2048;
    QTest::newRow("plus sign") << QByteArray("+7") << 7;
    QTest::newRow("spaces before") << QByteArray("  42") << 42;
    QTest::newRow("letters behind") << QByteArray("42 bytes") << 42;
    QTest::newRow("leading zeros") << QByteArray("0012") << 12;
    QTest::newRow("letters only") << QByteArray("abc") << 0;
    QTest::newRow("nothing") << QByteArray() << 0;
    QTest::newRow("largest int") << QByteArray("2147483647") << INT_MAX;
    QTest::newRow("smallest int") << QByteArray("-2147483648") << INT_MIN;
    QTest::newRow("three gigabytes keep their low 32 bits")
        << QByteArray("3221225472") << -1073741824;
    QTest::newRow("four gigabytes keep their low 32 bits") << QByteArray("4294967296") << 0;
    QTest::newRow("creation time keeps its low 32 bits")
        << QByteArray("20200131124502") << 899931414;
}

void CardAnswersTest::leadingDigitsAreTheNumber()
{
    QFETCH(QByteArray, text);
    const int number = card::leadingNumber(text.constData());
    QTEST(number, "number");
}

void CardAnswersTest::countTextSaysForHowManyFilesToAsk_data()
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
    row("letters behind the digits", "5 files", 3, 5);
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

void CardAnswersTest::countTextSaysForHowManyFilesToAsk()
{
    QFETCH(QByteArray, text);
    QFETCH(int, listed);
    const int asked = card::filesToAskAbout(text.constData(), listed);
    QTEST(asked, "asked");
}

void CardAnswersTest::listAnswerBecomesRows_data()
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
    row("last-entry-cut-in-name", {first, "old1"});
    row("last-entry-cut-in-folder", {first, "old1"});
    // The search for the folder does not stop at the semicolon.
    row("entry-without-folder", {first, third, third});
    row("last-entry-without-folder", {first, "old1"});
    row("semicolons-only", {"old0", "old1", "old2"});
    row("semicolon-at-end-only", {"old0"});
    row("empty-name", {"", second});
    row("line-feed-between-entries", {first, second});
    row("return-between-entries", {first});
    row("return-inside-name", {"BELUN\r01.mp4"});
    row("zero-byte-ends", {first});
    row("spaces-and-ampersands", {"dive 1 & 2.mp4", "a=b?c%20d.mp4"});
    row("folder-twice-in-entry", {"sd/DCIM/100ZEPNA/BELUN_0001.mp4"});
    row("utf8-name", {QStringLiteral("深海 é.mp4")});
    row("error-page", {"old0"});
}

void CardAnswersTest::listAnswerBecomesRows()
{
    QFile recorded(
        QStringLiteral(TEST_DATA "/filelist/%1.txt").arg(QLatin1String(QTest::currentDataTag())));
    QVERIFY2(recorded.open(QIODevice::ReadOnly), qPrintable(recorded.fileName()));
    const QStringList rows = read(recorded.readAll());
    QTEST(rows, "rows");
}

void CardAnswersTest::rowsFillTheNameTableFromSlotZero()
{
    read(entry("a.mp4") + entry("b.mp4") + entry("c.mp4") + "\r\n");
    QCOMPARE(slot(0), QByteArray("a.mp4"));
    QCOMPARE(slot(1), QByteArray("b.mp4"));
    QCOMPARE(slot(2), QByteArray("c.mp4"));
}

void CardAnswersTest::slotsBehindTheListKeepTheirText()
{
    read(entry("a.mp4") + entry("b.mp4") + "\r\n");
    QCOMPARE(slot(2), QByteArray("old2"));
    QCOMPARE(slot(3), QByteArray("old3"));
    QCOMPARE(slot(9998), QByteArray("old9998"));
}

void CardAnswersTest::nameOf29CharactersFitsItsSlot()
{
    const QByteArray name = "abcdefghijklmnopqrstuvwxy.mp4";
    QCOMPARE(name.size(), 29);
    QCOMPARE(read(entry("first.mp4") + entry(name) + "\r\n"),
             (QStringList{"first.mp4", "abcdefghijklmnopqrstuvwxy.mp4"}));
    QCOMPARE(slot(2), QByteArray("old2"));
}

void CardAnswersTest::longNameRunsIntoTheNextSlot()
{
    QCOMPARE(read(entry("abcdefghijklmnopqrstuvwxyz0123.mp4") + "\r\n"),
             (QStringList{"abcdefghijklmnopqrstuvwxyz0123.mp4"}));
    QCOMPARE(slot(0), QByteArray("abcdefghijklmnopqrstuvwxyz0123.mp4"));
    QCOMPARE(slot(1), QByteArray(".mp4"));
}

void CardAnswersTest::longNamesAndTheirFollowersAreAllShownWhole()
{
    const QStringList rows = read(entry("abcdefghijklmnopqrstuvwxyz0123.mp4") + entry("next.mp4") +
                                  entry("last.mp4") + "\r\n");
    QCOMPARE(rows, (QStringList{"abcdefghijklmnopqrstuvwxyz0123.mp4", "next.mp4", "last.mp4"}));
    // The follower has taken its slot, where the long name went on.
    QCOMPARE(slot(0), QByteArray("abcdefghijklmnopqrstuvwxyz0123next.mp4"));
    QCOMPARE(slot(1), QByteArray("next.mp4"));
}

void CardAnswersTest::rowsEndWhereTheRowNumberTurnsNegative_data()
{
    QTest::addColumn<int>("entries");
    QTest::addColumn<int>("rows");

    QTest::newRow("127 entries") << 127 << 127;
    QTest::newRow("128 entries") << 128 << 128;
    QTest::newRow("129 entries") << 129 << 128;
    QTest::newRow("200 entries") << 200 << 128;
    QTest::newRow("12,000 entries") << 12000 << 128;
}

void CardAnswersTest::rowsEndWhereTheRowNumberTurnsNegative()
{
    QFETCH(int, entries);
    QFETCH(int, rows);
    QByteArray answer;
    for (int number = 0; number < entries; ++number) {
        answer += entry(numbered(number));
    }
    const QStringList listed = read(answer + "\r\n");
    QCOMPARE(listed.size(), rows);
    QCOMPARE(listed.first(), QStringLiteral("F0.mp4"));
    QCOMPARE(listed.last(), QStringLiteral("F%1.mp4").arg(rows - 1));
    // No name is stored for an entry that got no row.
    QCOMPARE(slot(127), entries > 127 ? QByteArray("F127.mp4") : QByteArray("old127"));
    QCOMPARE(slot(128), QByteArray("old128"));
    QCOMPARE(slot(199), QByteArray("old199"));
    QCOMPARE(slot(9871), QByteArray("old9871")); // where -128 would be, counted from the end
}

void CardAnswersTest::hugeNameInTheLastRowStaysInTheTable()
{
    QByteArray answer;
    for (int number = 0; number < 127; ++number) {
        answer += entry(numbered(number));
    }
    const QStringList listed = read(answer + entry(QByteArray(500000, 'x')) + "\r\n");
    QCOMPARE(listed.size(), 128);
    QCOMPARE(listed.last(), QString(296159, QLatin1Char('x'))); // 9,872 slots and no zero in them
    QCOMPARE(slot(126), QByteArray("F126.mp4"));
    QCOMPARE(slot(9998), QByteArray(29, 'x'));
}

void CardAnswersTest::answerCutAnywhereIsReadToItsEnd()
{
    const QByteArray whole = entry("BELUN_0001.mp4") + entry("BELUN_0002.mp4") + "\r\n";
    for (int length = 0; length <= whole.size(); ++length) {
        init();
        // A block of its own size, so that a memory checker sees a read behind it.
        const std::unique_ptr<char[]> cut(new char[static_cast<std::size_t>(length) + 1]());
        std::memcpy(cut.get(), whole.constData(), static_cast<std::size_t>(length));
        const auto rows = card::readFileList(cut.get(), *m_names);
        const std::size_t expected = length == 0 ? 0 : length <= 32 ? 1 : 2;
        QVERIFY2(rows.size() == expected,
                 qPrintable(QStringLiteral("cut at %1: %2 rows").arg(length).arg(rows.size())));
        QCOMPARE(QByteArray(rows.empty() ? "" : rows[0].c_str()),
                 QByteArray(length == 0   ? ""
                            : length < 32 ? "old0"
                                          : "BELUN_0001.mp4"));
    }
}

BELUN_TEST(CardAnswersTest)

#include "CardAnswersTest.moc"
