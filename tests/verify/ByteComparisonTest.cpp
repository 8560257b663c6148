#include "verify/ByteComparison.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <QFile>
#include <QTemporaryDir>

using verify::ByteComparison;
using verify::LocalFile;
using verify::LocalFolder;

class ByteComparisonTest : public QObject
{
    Q_OBJECT

private slots:
    void bytesAreComparedInAnyPieces_data();
    void bytesAreComparedInAnyPieces();
    void nothingIsReadAfterTheFirstDifference();
};

void ByteComparisonTest::bytesAreComparedInAnyPieces_data()
{
    const support::Rows<QByteArray, QByteArray, bool, int> row("local", "card", "same", "compared");
    const QByteArray bytes = "0123456789";
    row("same", bytes, bytes, true, 10);
    row("nothing", bytes, QByteArray(), true, 0);
    row("beginning", bytes, bytes.left(7), true, 7);
    row("first byte", bytes, "x123456789", false, 0);
    row("last byte", bytes, "012345678x", false, 9);
    row("in the middle", bytes, "01234x6789", false, 5);
    row("two places", bytes, "0x2345678x", false, 1);
    row("file too short", bytes.left(4), bytes, false, 4);
    row("empty file", QByteArray(), bytes, false, 0);
    row("zero bytes", QByteArray(3, '\0'), QByteArray(3, '\0'), true, 3);
    row("after a zero byte", QByteArray("a\0b", 3), QByteArray("a\0c", 3), false, 2);
}

void ByteComparisonTest::bytesAreComparedInAnyPieces()
{
    QFETCH(QByteArray, local);
    QFETCH(QByteArray, card);
    const QTemporaryDir folder;
    QFile file(folder.filePath("A"));
    QVERIFY(file.open(QFile::WriteOnly) && file.write(local) == local.size());
    file.close();
    for (const int piece : {1, 2, 3, 100}) {
        LocalFile opened = LocalFolder(folder.path().toStdString()).open("A");
        ByteComparison comparison(opened);
        for (int i = 0; i < card.size(); i += piece) {
            comparison.take(card.mid(i, piece).toStdString());
        }
        QTEST(comparison.isSame(), "same");
        QTEST(int(comparison.compared()), "compared");
    }
}

void ByteComparisonTest::nothingIsReadAfterTheFirstDifference()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("A"));
    QVERIFY(file.open(QFile::WriteOnly) && file.write("abcdef") == 6);
    file.close();
    LocalFile opened = LocalFolder(folder.path().toStdString()).open("A");
    ByteComparison comparison(opened);
    QVERIFY(comparison.take("ab"));
    QVERIFY(!comparison.take("x"));
    QVERIFY(!comparison.take("def"));
    QCOMPARE(int(comparison.compared()), 2);
}

BELUN_TEST(ByteComparisonTest)

#include "ByteComparisonTest.moc"
