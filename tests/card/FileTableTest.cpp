// Creating the table's cells. The setup of the window's table is tested with the window.
#include "card/FileTable.h"

#include "tests/kit/TestMain.h"

#include <memory>

#include <QAbstractItemDelegate>
#include <QByteArray>
#include <QColor>
#include <QHeaderView>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTableWidget>
#include <QTableWidgetItem>
#include <QTest>

class FileTableTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void columnsAreNameDateSizeDuration();
    void headersAreTheGivenTexts();
    void delegateIsInstalledAndUsed();
    void nameRowHasATextAndNothingElse();
    void nameRowsAreInsertedAtTheGivenRow();
    void detailIsGrayAndAlignedAsGiven_data();
    void detailIsGrayAndAlignedAsGiven();
    void detailReplacesAnOlderOne();
    void detailOfAMissingRowIsIgnored();

private:
    std::unique_ptr<NoFocusDelegate> m_delegate; // outlives the table
    std::unique_ptr<QTableWidget> m_table;
};

void FileTableTest::init()
{
    m_table = std::make_unique<QTableWidget>();
    m_delegate = card::setUpFileTable(*m_table, {"one", "two", "three", "four"});
}

void FileTableTest::columnsAreNameDateSizeDuration()
{
    QCOMPARE(static_cast<int>(card::NameColumn), 0);
    QCOMPARE(static_cast<int>(card::DateColumn), 1);
    QCOMPARE(static_cast<int>(card::SizeColumn), 2);
    QCOMPARE(static_cast<int>(card::DurationColumn), 3);
    QCOMPARE(m_table->columnCount(), 4);
    QCOMPARE(m_table->rowCount(), 0);
}

void FileTableTest::headersAreTheGivenTexts()
{
    QStringList shown;
    for (int column = 0; column < 4; ++column) {
        shown.append(m_table->horizontalHeaderItem(column)->text());
    }
    QCOMPARE(shown, (QStringList{"one", "two", "three", "four"}));
}

void FileTableTest::delegateIsInstalledAndUsed()
{
    QVERIFY(m_delegate != nullptr);
    QCOMPARE(m_table->itemDelegate(), static_cast<QAbstractItemDelegate*>(m_delegate.get()));
    QVERIFY(m_delegate->parent() == nullptr);
}

void FileTableTest::nameRowHasATextAndNothingElse()
{
    card::addNameRow(*m_table, 0, QStringLiteral("a.mp4"));
    QCOMPARE(m_table->rowCount(), 1);
    const QTableWidgetItem* item = m_table->item(0, 0);
    QVERIFY(item != nullptr);
    QCOMPARE(item->text(), QStringLiteral("a.mp4"));
    QVERIFY(!item->data(Qt::ForegroundRole).isValid());
    QVERIFY(!item->data(Qt::TextAlignmentRole).isValid());
    for (int column = 1; column < 4; ++column) {
        QVERIFY(m_table->item(0, column) == nullptr);
    }
}

void FileTableTest::nameRowsAreInsertedAtTheGivenRow()
{
    card::addNameRow(*m_table, 0, QStringLiteral("a.mp4"));
    card::addNameRow(*m_table, 1, QStringLiteral("b.mp4"));
    card::addNameRow(*m_table, 1, QStringLiteral("between.mp4"));
    QCOMPARE(m_table->item(0, 0)->text(), QStringLiteral("a.mp4"));
    QCOMPARE(m_table->item(1, 0)->text(), QStringLiteral("between.mp4"));
    QCOMPARE(m_table->item(2, 0)->text(), QStringLiteral("b.mp4"));
}

void FileTableTest::detailIsGrayAndAlignedAsGiven_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("alignment");

    QTest::newRow("centred") << 1 << 0x0084;
    QTest::newRow("right, no vertical flag") << 2 << 0x0002;
    QTest::newRow("last column") << 3 << 0x0084;
}

void FileTableTest::detailIsGrayAndAlignedAsGiven()
{
    QFETCH(int, column);
    QFETCH(int, alignment);
    card::addNameRow(*m_table, 0, QStringLiteral("a.mp4"));
    card::setDetail(*m_table, 0, static_cast<card::Column>(column), QStringLiteral("text"),
                    static_cast<Qt::Alignment>(alignment));
    const QTableWidgetItem* item = m_table->item(0, column);
    QVERIFY(item != nullptr);
    QCOMPARE(item->text(), QStringLiteral("text"));
    QCOMPARE(item->foreground().color(), QColor(128, 128, 128)); // the colour named "gray"
    QCOMPARE(item->textAlignment(), alignment);
}

void FileTableTest::detailReplacesAnOlderOne()
{
    card::addNameRow(*m_table, 0, QStringLiteral("a.mp4"));
    card::setDetail(*m_table, 0, card::SizeColumn, QStringLiteral("1MB"), Qt::AlignRight);
    card::setDetail(*m_table, 0, card::SizeColumn, QStringLiteral("2MB"), Qt::AlignRight);
    QCOMPARE(m_table->item(0, 2)->text(), QStringLiteral("2MB"));
}

void FileTableTest::detailOfAMissingRowIsIgnored()
{
    card::addNameRow(*m_table, 0, QStringLiteral("a.mp4"));
    for (const int row : {-128, -1, 1, 2, 9998}) {
        card::setDetail(*m_table, row, card::DateColumn, QStringLiteral("text"), Qt::AlignCenter);
        QCOMPARE(m_table->rowCount(), 1);
        QVERIFY(m_table->item(0, 1) == nullptr);
    }
}

BELUN_TEST(FileTableTest)

#include "FileTableTest.moc"
