// The selected rows: their order, and a full record.
#include "card/SelectionRecord.h"

#include "tests/kit/TestMain.h"

#include <climits>
#include <memory>

#include <QByteArray>
#include <QObject>
#include <QTest>
#include <QVector>

class SelectionRecordTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup(); // checks that nothing around the rows was written

    void rowsAreLargestFirst_data();
    void rowsAreLargestFirst();
    void holds9999RowsAndTakesNoMore();
    void fullRecordKeepsItsRows();
    void countBelowZeroTakesNoRow();
    void onlyPositionsInsideTheRecordHaveARow();

private:
    /// The selected rows with a canary on either side.
    struct Guarded
    {
        qint32 before = 0x5a5a5a5a;
        card::SelectedRows rows{};
        qint32 after = 0x5a5a5a5a;
    };

    QVector<int> firstRows(int count) const
    {
        return {m_guarded->rows.begin(), m_guarded->rows.begin() + count};
    }

    std::unique_ptr<Guarded> m_guarded;
    qint32 m_count = 0;
};

void SelectionRecordTest::init()
{
    m_guarded = std::make_unique<Guarded>();
    m_count = 0;
}

void SelectionRecordTest::cleanup()
{
    QCOMPARE(m_guarded->before, 0x5a5a5a5a);
    QCOMPARE(m_guarded->after, 0x5a5a5a5a);
}

void SelectionRecordTest::rowsAreLargestFirst_data()
{
    QTest::addColumn<QVector<int>>("inserted");
    QTest::addColumn<QVector<int>>("expected");

    using Rows = QVector<int>;
    QTest::newRow("none") << Rows{} << Rows{};
    QTest::newRow("one") << Rows{5} << Rows{5};
    QTest::newRow("row 0 alone") << Rows{0} << Rows{0};
    QTest::newRow("2, 7 and 4") << Rows{2, 7, 4} << Rows{7, 4, 2};
    QTest::newRow("upwards") << Rows{0, 1, 2, 3, 4} << Rows{4, 3, 2, 1, 0};
    QTest::newRow("downwards") << Rows{4, 3, 2, 1, 0} << Rows{4, 3, 2, 1, 0};
    QTest::newRow("row 0 last") << Rows{9, 3, 0} << Rows{9, 3, 0};
    QTest::newRow("row 0 first") << Rows{0, 3, 9} << Rows{9, 3, 0};
    QTest::newRow("two ranges") << Rows{1, 2, 3, 7, 8} << Rows{8, 7, 3, 2, 1};
    QTest::newRow("a row in two ranges is listed twice")
        << Rows{1, 2, 3, 2, 4} << Rows{4, 3, 2, 2, 1};
    QTest::newRow("row 0 twice") << Rows{0, 0} << Rows{0, 0};
}

void SelectionRecordTest::rowsAreLargestFirst()
{
    QFETCH(QVector<int>, inserted);
    QFETCH(QVector<int>, expected);
    for (const int row : inserted) {
        card::insertLargestFirst(m_guarded->rows, m_count, row);
    }
    QCOMPARE(m_count, expected.size());
    QCOMPARE(firstRows(m_count), expected);
    QCOMPARE(m_guarded->rows[static_cast<std::size_t>(m_count)], 0);
}

void SelectionRecordTest::holds9999RowsAndTakesNoMore()
{
    for (int row = 0; row < 10050; ++row) {
        card::insertLargestFirst(m_guarded->rows, m_count, row);
    }
    QCOMPARE(m_count, 9999);
    for (int position = 0; position < 9999; ++position) {
        QCOMPARE(card::rowAt(m_guarded->rows, position), 9998 - position);
    }
}

void SelectionRecordTest::fullRecordKeepsItsRows()
{
    m_guarded->rows.fill(50);
    m_count = 9999;
    for (const int row : {100, 50, 0}) {
        card::insertLargestFirst(m_guarded->rows, m_count, row);
    }
    QCOMPARE(m_count, 9999);
    QCOMPARE(firstRows(9999), QVector<int>(9999, 50));
}

void SelectionRecordTest::countBelowZeroTakesNoRow()
{
    m_count = -1; // as after a delete
    card::insertLargestFirst(m_guarded->rows, m_count, 3);
    QCOMPARE(m_count, -1);
    QCOMPARE(firstRows(2), (QVector<int>{0, 0}));
}

void SelectionRecordTest::onlyPositionsInsideTheRecordHaveARow()
{
    m_guarded->rows.fill(7);
    m_guarded->rows.front() = 12;
    m_guarded->rows.back() = 34;
    QCOMPARE(card::rowAt(m_guarded->rows, 0), 12);
    QCOMPARE(card::rowAt(m_guarded->rows, 9998), 34);
    for (const int position : {-1, 9999, INT_MIN, INT_MAX}) {
        QCOMPARE(card::rowAt(m_guarded->rows, position), -1);
    }
}

BELUN_TEST(SelectionRecordTest)

#include "SelectionRecordTest.moc"
