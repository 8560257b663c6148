// The window's file table: its setup and the check box that selects all rows.
#include "card/FileTable.h"

#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <memory>

#include <QAbstractItemDelegate>
#include <QFont>
#include <QHeaderView>
#include <QStyledItemDelegate>

class FileTableTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { user.reset(); }

    void columnsShareTheWidth();
    void headerIsBoldAndOtherwiseAsItWas();
    void rowsAre25HighAndTheHeader30();
    void frameRowNumbersAndGridAreNotShown();
    void wholeRowsAreSelectedInAnyNumber();
    void cellsCannotBeEdited();
    void styleSheetsColourSelectionAndHeader();
    void cellsArePaintedByTheDelegateWithoutFocusFrame();

    void selectAllSelectsEveryRow();
    void uncheckingClearsASelectionMadeByHand();
    void selectAllOnAnEmptyTableSelectsNothing();
    void stateOfTheBoxCountsAndNotTheArgument();
    void halfCheckedBoxClearsTheSelection();

private:
    QTableWidget& table() const { return user->table(); }
    QHeaderView& header() const { return *table().horizontalHeader(); }
    void addRows(int count) const
    {
        for (int row = 0; row < count; ++row) {
            card::addNameRow(table(), row, "a.mp4");
        }
    }

    std::unique_ptr<UserWindow> user;
};

void FileTableTest::init()
{
    user = std::make_unique<UserWindow>();
    user->window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&user->window()));
}

void FileTableTest::columnsShareTheWidth()
{
    QCOMPARE(table().columnCount(), 4);
    QCOMPARE(table().rowCount(), 0);
    QCOMPARE(header().defaultSectionSize(), 150);
    QVERIFY(header().stretchLastSection());
    for (int column = 0; column < 4; ++column) {
        QCOMPARE(header().sectionResizeMode(column), QHeaderView::Stretch);
    }
    QCOMPARE(header().length(), table().viewport()->width());
    QVERIFY(qAbs(table().columnWidth(0) - table().columnWidth(3)) <= 3);
}

void FileTableTest::headerIsBoldAndOtherwiseAsItWas()
{
    QTableWidget plain;
    QFont expected = plain.horizontalHeader()->font();
    QVERIFY(expected.weight() != QFont::Bold);
    expected.setWeight(QFont::Bold);
    QCOMPARE(int{header().font().weight()}, int{QFont::Bold});
    QCOMPARE(header().font(), expected);
}

void FileTableTest::rowsAre25HighAndTheHeader30()
{
    QCOMPARE(table().verticalHeader()->defaultSectionSize(), 25);
    addRows(2);
    QCOMPARE(table().rowHeight(1), 25);
    QCOMPARE(header().minimumHeight(), 30);
    QCOMPARE(header().maximumHeight(), 30);
    QCOMPARE(header().height(), 30);
}

void FileTableTest::frameRowNumbersAndGridAreNotShown()
{
    QCOMPARE(table().frameShape(), QFrame::NoFrame);
    QVERIFY(table().verticalHeader()->isHidden());
    QVERIFY(!table().showGrid());
}

void FileTableTest::wholeRowsAreSelectedInAnyNumber()
{
    QCOMPARE(table().selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(table().selectionBehavior(), QAbstractItemView::SelectRows);
    addRows(9);
    user->chooseRows({2, 7, 4});
    QCOMPARE(user->selectedRows(), (QList<int>{2, 4, 7}));
}

void FileTableTest::cellsCannotBeEdited()
{
    QCOMPARE(table().editTriggers(), QAbstractItemView::NoEditTriggers);
    addRows(1);
    user->chooseRows({0});
    QTest::keyClicks(table().viewport(), "x");
    QTest::keyClick(table().viewport(), Qt::Key_F2);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, Qt::NoModifier,
                       table().visualItemRect(table().item(0, 0)).center());
    QVERIFY(table().findChildren<QLineEdit*>().isEmpty());
    QCOMPARE(user->names(), QStringList{"a.mp4"});
}

void FileTableTest::styleSheetsColourSelectionAndHeader()
{
    QCOMPARE(table().styleSheet(), QString("selection-background-color:rgb(89,153,247);"));
    QCOMPARE(header().styleSheet(), QString("QHeaderView::section{background:rgb(231,228,229);}"));
    QVERIFY(!header().highlightSections());
}

/// NoFocusDelegateTest tests how the delegate paints.
void FileTableTest::cellsArePaintedByTheDelegateWithoutFocusFrame()
{
    const QMetaObject& delegate = *table().itemDelegate()->metaObject();
    QCOMPARE(delegate.className(), "NoFocusDelegate");
    QCOMPARE(delegate.superClass(), &QStyledItemDelegate::staticMetaObject);
    for (int column = 0; column < table().columnCount(); ++column) {
        QVERIFY(table().itemDelegateForColumn(column) == nullptr);
    }
}

void FileTableTest::selectAllSelectsEveryRow()
{
    addRows(5);
    QTest::mouseClick(&user->selectAll(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(6, user->selectAll().height() / 2));
    QVERIFY(user->selectAll().isChecked());
    QCOMPARE(user->selectedRows(), (QList<int>{0, 1, 2, 3, 4}));
    user->toggleSelectAll();
    QVERIFY(!user->selectAll().isChecked());
    QCOMPARE(user->selectedRows(), QList<int>());
}

void FileTableTest::uncheckingClearsASelectionMadeByHand()
{
    addRows(5);
    user->toggleSelectAll();
    user->chooseRows({3});
    QCOMPARE(user->selectedRows(), QList<int>{3});
    user->toggleSelectAll();
    QCOMPARE(user->selectedRows(), QList<int>());
}

void FileTableTest::selectAllOnAnEmptyTableSelectsNothing()
{
    user->toggleSelectAll();
    QVERIFY(user->selectAll().isChecked());
    QVERIFY(table().selectedRanges().isEmpty());
    QVERIFY(!table().selectionModel()->hasSelection());
}

void FileTableTest::stateOfTheBoxCountsAndNotTheArgument()
{
    addRows(3);
    user->chooseRows({1});
    user->probe().call("on_checkBoxSelectAllFiles_stateChanged", Q_ARG(int, Qt::Checked));
    QCOMPARE(user->selectedRows(), QList<int>());
    user->toggleSelectAll();
    user->chooseRows({1});
    user->probe().call("on_checkBoxSelectAllFiles_stateChanged", Q_ARG(int, Qt::Unchecked));
    QCOMPARE(user->selectedRows(), (QList<int>{0, 1, 2}));
}

void FileTableTest::halfCheckedBoxClearsTheSelection()
{
    addRows(3);
    user->toggleSelectAll();
    user->selectAll().setCheckState(Qt::PartiallyChecked);
    QCOMPARE(user->selectedRows(), QList<int>());
}

BELUN_TEST(FileTableTest)
#include "FileTableTest.moc"
