// The window's file table: its setup and the check box that selects all rows.
#include "app/MainWindow.h"
#include "tests/kit/LoudFocusStyle.h"
#include "tests/kit/SelectedRows.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowProbe.h"

#include <memory>

#include <QAbstractItemDelegate>
#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QColor>
#include <QFont>
#include <QFrame>
#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QTableWidgetItem>
#include <QTest>

class FileTableTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void hasFourColumnsAndNoRow();
    void headerIsBoldAndOtherwiseAsItWas();
    void columnsShareTheWidth();
    void rowsAre25High();
    void headerIs30High();
    void frameRowNumbersAndGridAreNotShown();
    void wholeRowsAreSelectedInAnyNumber();
    void cellsCannotBeEdited();
    void styleSheetsColourSelectionAndHeader();
    void headerDoesNotHighlightTheSelection();
    void cellsArePaintedByTheDelegateWithoutFocusFrame();
    void focusedCellShowsNoFrameButTheSelectionColour();

    void selectAllSelectsEveryRow();
    void uncheckingClearsASelectionMadeByHand();
    void selectAllOnAnEmptyTableSelectsNothing();
    void stateOfTheBoxCountsAndNotTheArgument();
    void halfCheckedBoxClearsTheSelection();

private:
    QTableWidget& table() const { return child<QTableWidget>("tableWidgetFileInfo"); }
    QHeaderView& header() const { return *table().horizontalHeader(); }
    QCheckBox& box() const { return child<QCheckBox>("checkBoxSelectAllFiles"); }
    template <class Widget>
    Widget& child(const char* name) const
    {
        return support::WindowProbe(*m_window).child<Widget>(QString::fromLatin1(name));
    }
    void addRows(int count) const
    {
        for (int row = 0; row < count; ++row) {
            table().insertRow(row);
            table().setItem(row, 0, new QTableWidgetItem(QStringLiteral("F%1.mp4").arg(row)));
        }
    }
    void clickRow(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::mouseClick(table().viewport(), Qt::LeftButton, modifiers,
                          table().visualItemRect(table().item(row, 0)).center());
    }
    void clickBox() const
    {
        QTest::mouseClick(&box(), Qt::LeftButton, Qt::NoModifier, QPoint(6, box().height() / 2));
    }
    QList<int> selectedRows() const { return selectedRowsOf(table()); }

    std::unique_ptr<MainWindow> m_window;
};

void FileTableTest::init()
{
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void FileTableTest::cleanup()
{
    m_window.reset();
    QApplication::setStyle(QStringLiteral("Fusion"));
}

void FileTableTest::hasFourColumnsAndNoRow()
{
    QCOMPARE(table().columnCount(), 4);
    QCOMPARE(table().rowCount(), 0);
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

void FileTableTest::columnsShareTheWidth()
{
    QCOMPARE(header().defaultSectionSize(), 150);
    QVERIFY(header().stretchLastSection());
    for (int column = 0; column < 4; ++column) {
        QCOMPARE(header().sectionResizeMode(column), QHeaderView::Stretch);
    }
    QCOMPARE(header().length(), table().viewport()->width());
    QVERIFY(qAbs(table().columnWidth(0) - table().columnWidth(3)) <= 3);
}

void FileTableTest::rowsAre25High()
{
    QCOMPARE(table().verticalHeader()->defaultSectionSize(), 25);
    addRows(2);
    QCOMPARE(table().rowHeight(1), 25);
}

void FileTableTest::headerIs30High()
{
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
    clickRow(2);
    clickRow(7, Qt::ControlModifier);
    clickRow(4, Qt::ControlModifier);
    QCOMPARE(selectedRows(), (QList<int>{2, 4, 7}));
}

void FileTableTest::cellsCannotBeEdited()
{
    QCOMPARE(table().editTriggers(), QAbstractItemView::NoEditTriggers);
    addRows(1);
    clickRow(0);
    QTest::keyClicks(table().viewport(), QStringLiteral("x"));
    QTest::keyClick(table().viewport(), Qt::Key_F2);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, Qt::NoModifier,
                       table().visualItemRect(table().item(0, 0)).center());
    QVERIFY(table().findChildren<QLineEdit*>().isEmpty());
    QCOMPARE(table().item(0, 0)->text(), QStringLiteral("F0.mp4"));
}

void FileTableTest::styleSheetsColourSelectionAndHeader()
{
    QCOMPARE(table().styleSheet(), QStringLiteral("selection-background-color:rgb(89,153,247);"));
    QCOMPARE(header().styleSheet(),
             QStringLiteral("QHeaderView::section{background:rgb(231,228,229);}"));
}

void FileTableTest::headerDoesNotHighlightTheSelection()
{
    QVERIFY(!header().highlightSections());
}

void FileTableTest::cellsArePaintedByTheDelegateWithoutFocusFrame()
{
    QCOMPARE(table().itemDelegate()->metaObject()->className(), "NoFocusDelegate");
    QCOMPARE(table().itemDelegate()->metaObject()->superClass(),
             &QStyledItemDelegate::staticMetaObject);
}

void FileTableTest::focusedCellShowsNoFrameButTheSelectionColour()
{
    QApplication::setStyle(new LoudFocusStyle);
    addRows(3);
    table().setFocus();
    clickRow(0);
    QTest::keyClick(&table(),
                    Qt::Key_Down); // the focus came from the keyboard, so frames are drawn
    QVERIFY(table().hasFocus());
    QCOMPARE(table().currentRow(), 1);

    const auto redPixels = [this] {
        const QImage image = table().viewport()->grab().toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                count += image.pixelColor(x, y) == QColor(255, 0, 0) ? 1 : 0;
            }
        }
        return count;
    };
    QCOMPARE(redPixels(), 0);
    const QRect cell = table().visualItemRect(table().item(1, 0));
    QCOMPARE(table().viewport()->grab().toImage().pixelColor(cell.right() - 3, cell.top() + 2),
             QColor(89, 153, 247));

    // The base delegate draws the frame, so the check above can fail.
    QStyledItemDelegate base;
    QAbstractItemDelegate* own = table().itemDelegate();
    table().setItemDelegate(&base);
    const int withFrame = redPixels();
    table().setItemDelegate(own);
    QVERIFY(withFrame > 0);
}

void FileTableTest::selectAllSelectsEveryRow()
{
    addRows(5);
    clickBox();
    QVERIFY(box().isChecked());
    QCOMPARE(selectedRows(), (QList<int>{0, 1, 2, 3, 4}));
    clickBox();
    QVERIFY(!box().isChecked());
    QCOMPARE(selectedRows(), QList<int>());
}

void FileTableTest::uncheckingClearsASelectionMadeByHand()
{
    addRows(5);
    clickBox();
    clickRow(3);
    QCOMPARE(selectedRows(), QList<int>{3});
    clickBox();
    QCOMPARE(selectedRows(), QList<int>());
}

void FileTableTest::selectAllOnAnEmptyTableSelectsNothing()
{
    clickBox();
    QVERIFY(box().isChecked());
    QVERIFY(table().selectedRanges().isEmpty());
    QVERIFY(!table().selectionModel()->hasSelection());
}

void FileTableTest::stateOfTheBoxCountsAndNotTheArgument()
{
    addRows(3);
    clickRow(1);
    const support::WindowProbe probe(*m_window);
    probe.call("on_checkBoxSelectAllFiles_stateChanged", Q_ARG(int, Qt::Checked));
    QCOMPARE(selectedRows(), QList<int>());
    clickBox();
    clickRow(1);
    probe.call("on_checkBoxSelectAllFiles_stateChanged", Q_ARG(int, Qt::Unchecked));
    QCOMPARE(selectedRows(), (QList<int>{0, 1, 2}));
}

void FileTableTest::halfCheckedBoxClearsTheSelection()
{
    addRows(3);
    clickBox();
    box().setCheckState(Qt::PartiallyChecked);
    QCOMPARE(selectedRows(), QList<int>());
}

BELUN_TEST(FileTableTest)

#include "FileTableTest.moc"
