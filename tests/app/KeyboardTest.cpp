// The window without a mouse: the tab order, and entering and leaving the table.
#include "card/FileTable.h"
#include "tests/app/FormListing.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <memory>

#include <QApplication>
#include <QSignalSpy>

class KeyboardTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { user.reset(); }

    void tabGoesThroughTheWidgetsFromTopToBottom();
    void shiftTabGoesBack();
    void spacePressesTheButtonInFocus_data();
    void spacePressesTheButtonInFocus();
    void arrowsSelectRowsInTheTable();
    void tabStaysInATableWithRows();
    void ctrlTabLeavesTheTableAndKeepsTheSelection_data();
    void ctrlTabLeavesTheTableAndKeepsTheSelection();

private:
    /// Adds five rows as a browse does, moves the focus to the table, and goes to its first cell.
    void enterTableOfFive() const;
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    static QString focused() { return QApplication::focusWidget()->objectName(); }

    std::unique_ptr<UserWindow> user;
};

/// Returns the widgets that the user can operate, from top to bottom.
static QStringList inTheirOrder()
{
    return listedNames({"QPushButton", "QComboBox", "QCheckBox", "QTableWidget"});
}

void KeyboardTest::init()
{
    user = std::make_unique<UserWindow>();
    user->window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&user->window()));
    QTRY_VERIFY(QApplication::focusWidget() != nullptr);
}

void KeyboardTest::enterTableOfFive() const
{
    for (int row = 0; row < 5; ++row) {
        card::addNameRow(user->table(), row, QStringLiteral("%1.mp4").arg(row));
    }
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(focused(), QStringLiteral("tableWidgetFileInfo"));
    press(Qt::Key_Home, Qt::ControlModifier);
}

void KeyboardTest::tabGoesThroughTheWidgetsFromTopToBottom()
{
    for (const QString& name : inTheirOrder()) {
        QCOMPARE(focused(), name);
        press(Qt::Key_Tab);
    }
    QCOMPARE(focused(), inTheirOrder().first());
}

void KeyboardTest::shiftTabGoesBack()
{
    QStringList left = inTheirOrder();
    while (!left.isEmpty()) {
        press(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(focused(), left.takeLast());
    }
}

void KeyboardTest::spacePressesTheButtonInFocus_data()
{
    QTest::addColumn<int>("tabs");

    for (const QString& button : listedNames({"QPushButton", "QCheckBox"})) {
        QTest::newRow(qPrintable(button)) << static_cast<int>(inTheirOrder().indexOf(button));
    }
}

void KeyboardTest::spacePressesTheButtonInFocus()
{
    QFETCH(int, tabs);
    for (int times = 0; times < tabs; ++times) {
        press(Qt::Key_Tab);
    }
    auto* button = qobject_cast<QAbstractButton*>(QApplication::focusWidget());
    QVERIFY(button != nullptr);
    QCOMPARE(button->objectName(), QString::fromLatin1(QTest::currentDataTag()));
    // Only the key matters here; what the buttons do is tested with a vehicle.
    QVERIFY(button->disconnect(&user->window()));
    const QSignalSpy clicks(button, SIGNAL(clicked()));
    press(Qt::Key_Space);
    QCOMPARE(clicks.count(), 1);
}

void KeyboardTest::arrowsSelectRowsInTheTable()
{
    enterTableOfFive();
    press(Qt::Key_Down);
    QCOMPARE(user->selectedRows(), QList<int>{1});
    press(Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(user->selectedRows(), (QList<int>{1, 2}));
    press(Qt::Key_Down, Qt::ControlModifier);
    press(Qt::Key_Down, Qt::ControlModifier);
    press(Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(user->selectedRows(), (QList<int>{1, 2, 4}));
    press(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(user->selectedRows(), (QList<int>{0, 1, 2, 3, 4}));
}

/// Tab only moves through the cells; Ctrl+Tab leaves the table.
void KeyboardTest::tabStaysInATableWithRows()
{
    enterTableOfFive();
    for (int times = 0; times < 21; ++times) {
        press(Qt::Key_Tab);
        QCOMPARE(focused(), QStringLiteral("tableWidgetFileInfo"));
    }
    QCOMPARE(user->table().currentRow(), 0);
    QCOMPARE(user->table().currentColumn(), 1);
}

void KeyboardTest::ctrlTabLeavesTheTableAndKeepsTheSelection_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("next");

    QTest::newRow("forward") << Qt::Key_Tab << Qt::KeyboardModifiers(Qt::ControlModifier)
                             << inTheirOrder().first();
    QTest::newRow("back") << Qt::Key_Backtab
                          << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::ShiftModifier)
                          << QStringLiteral("checkBoxSelectAllFiles");
}

void KeyboardTest::ctrlTabLeavesTheTableAndKeepsTheSelection()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, next);
    enterTableOfFive();
    press(Qt::Key_Down);
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(key, modifiers);
    QCOMPARE(focused(), next);
    press(key, modifiers);
    QVERIFY2(focused() == next, "outside the table, these keys must not move the focus");
    QCOMPARE(user->selectedRows(), (QList<int>{1, 2}));
}

BELUN_TEST(KeyboardTest)

#include "KeyboardTest.moc"
