// A recording's details in the window's table; marker search and number conversion.
#include "card/FileTable.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <QColor>

namespace {

void parse(const UserWindow& user, int row)
{
    user.probe().call("ParseFileInfo",
                      Q_ARG(const char*, "create=\"20200131124502\";size=\"2047\";time=\"37\";"),
                      Q_ARG(int, row));
}

} // namespace

class FileInfoTest : public QObject
{
    Q_OBJECT

private slots:
    void answerFillsDateSizeAndDuration();
    void rowThatDoesNotExistIsIgnored();
    void markerSearchCopiesTheTextAndReturnsItsLength_data();
    void markerSearchCopiesTheTextAndReturnsItsLength();
    void numberIsWrittenInItsBase();
};

void FileInfoTest::answerFillsDateSizeAndDuration()
{
    const UserWindow user;
    for (int row = 0; row < 3; ++row) {
        card::addNameRow(user.table(), row, "a.mp4");
    }
    parse(user, 1);
    QCOMPARE(user.row(0), (QStringList{"a.mp4", "", "", ""}));
    QCOMPARE(user.row(1), (QStringList{"a.mp4", "2020-01-31  12:45:02", "1KB", "37s"}));
    QCOMPARE(user.row(2), (QStringList{"a.mp4", "", "", ""}));
    const int alignments[] = {0x0084, 0x0002, 0x0084}; // the size has no vertical alignment
    for (int column = 1; column <= 3; ++column) {
        const QTableWidgetItem& item = *user.table().item(1, column);
        QCOMPARE(item.foreground().color(), QColor(128, 128, 128));
        QCOMPARE(item.textAlignment(), alignments[column - 1]);
    }
    QVERIFY(!user.table().item(1, 0)->data(Qt::ForegroundRole).isValid());
    QVERIFY(!user.table().item(1, 0)->data(Qt::TextAlignmentRole).isValid());
}

/// Other rows are covered by the test of card/FileTable.
void FileInfoTest::rowThatDoesNotExistIsIgnored()
{
    const UserWindow user;
    card::addNameRow(user.table(), 0, "a.mp4");
    parse(user, -1);
    parse(user, 1);
    QCOMPARE(user.table().rowCount(), 1);
    QCOMPARE(user.row(0), (QStringList{"a.mp4", "", "", ""}));
}

void FileInfoTest::markerSearchCopiesTheTextAndReturnsItsLength_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("start"); // of the buffer; the other bytes stay unchanged
    QTest::newRow("a text") << QByteArray("var a=\"12345\";b=\"6\";") << 5
                            << QByteArray("12345\0", 6);
    QTest::newRow("an empty text") << QByteArray("a=\"\";") << 0 << QByteArray("\0", 1);
    QTest::newRow("no right marker") << QByteArray("=\"12") << 0 << QByteArray();
}

void FileInfoTest::markerSearchCopiesTheTextAndReturnsItsLength()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, start);
    const UserWindow user;
    QByteArray buffer(32, '#');
    int length = -1;
    user.probe().call("findSubString", Q_RETURN_ARG(int, length),
                      Q_ARG(const char*, answer.constData()), Q_ARG(char*, buffer.data()),
                      Q_ARG(const char*, "=\""), Q_ARG(const char*, "\";"));
    QTEST(length, "length");
    QCOMPARE(buffer, start + QByteArray(32 - start.size(), '#'));
}

void FileInfoTest::numberIsWrittenInItsBase()
{
    const UserWindow user;
    QByteArray buffer(32, '#');
    user.probe().call("itoa", Q_ARG(int, 255), Q_ARG(char*, buffer.data()), Q_ARG(int, 16));
    QCOMPARE(buffer, QByteArray("ff\0", 3) + QByteArray(29, '#'));
}

BELUN_TEST(FileInfoTest)
#include "FileInfoTest.moc"
