// Where the keyboard focus goes when a focused button is disabled: never to a button that deletes,
// unless the user moves the focus there.
#include "tests/app/Scene.h"
#include "tests/kit/TestMain.h"

#include <memory>

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QList>
#include <QWidget>

namespace {

const QString table = QStringLiteral("tableWidgetFileInfo");

} // namespace

class FocusTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void spaceAfterADownloadByKeyboardDeletesNothing_data();
    void spaceAfterADownloadByKeyboardDeletesNothing();
    void focusStaysWhereTheUserPutsIt_data();
    void focusStaysWhereTheUserPutsIt();
    void tableTakesTheFocusInAnInactiveWindowToo();
    void downloadLeavesTheFocusElsewhereAlone();
    void deleteTakesTheFocusFromDeleteAllToTheTable_data();
    void deleteTakesTheFocusFromDeleteAllToTheTable();
    void deleteLeavesTheFocusElsewhereAlone();

private:
    /// Returns the name of the window's own focus widget, whether or not the window is active.
    QString focused() const
    {
        const QWidget* widget = scene->user.window().focusWidget();
        return widget != nullptr ? widget->objectName() : QStringLiteral("none");
    }
    void focus(const char* name) const
    {
        scene->user.probe().child<QWidget>(QLatin1String(name)).setFocus(Qt::TabFocusReason);
        QCOMPARE(focused(), QString::fromLatin1(name));
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    /// Presses a button as a screen reader does, without moving the focus.
    void pressFromOutside(const char* button) const
    {
        QAccessible::queryAccessibleInterface(&scene->user.button(button))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
    }

    std::unique_ptr<Scene> scene;
};

void FocusTest::init()
{
    scene.reset(); // not yet destroyed if init() failed for the previous test function
    scene = std::make_unique<Scene>(Texts{"a.mp4", "b.mp4", "c.mp4"});
    scene->user.window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&scene->user.window()));
    scene->camera->answer(fake::deleteTarget, "deleted");
    scene->camera->answer(fake::downloadTarget, "recording");
    scene->stall("c.mp4");
}

void FocusTest::cleanup()
{
    scene.reset();
}

void FocusTest::spaceAfterADownloadByKeyboardDeletesNothing_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("one recording") << QList<int>{2};
    QTest::newRow("three recordings") << QList<int>{0, 1, 2};
}

void FocusTest::spaceAfterADownloadByKeyboardDeletesNothing()
{
    QFETCH(QList<int>, rows);
    scene->user.chooseRows(rows);
    focus("pushButtonDownloadFile");
    press(Qt::Key_Space);
    QTRY_VERIFY(scene->gate("c.mp4").isReached());
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    scene->gate("c.mp4").open();
    QTRY_VERIFY(scene->user.isIdle());
    press(Qt::Key_Space);
    QCOMPARE(scene->camera->targets().size(), rows.size());
    for (const QByteArray& target : scene->camera->targets()) {
        QVERIFY2(target.startsWith(fake::downloadTarget), target.constData());
    }
    QCOMPARE(scene->user.table().rowCount(), 3);
    QCOMPARE(focused(), table);
}

void FocusTest::focusStaysWhereTheUserPutsIt_data()
{
    QTest::addColumn<int>("tabs");
    QTest::addColumn<QString>("name");
    // On the way to the delete button, Tab skips the disabled download button.
    QTest::newRow("link") << 0 << "pushButtonLinkBELUN";
    QTest::newRow("browse") << 2 << "pushButtonEnterTFcard";
    QTest::newRow("delete") << 3 << "pushButtonDeleteFile";
}

void FocusTest::focusStaysWhereTheUserPutsIt()
{
    QFETCH(int, tabs);
    QFETCH(QString, name);
    scene->user.chooseRows({0, 1, 2});
    focus("pushButtonDownloadFile");
    press(Qt::Key_Space);
    QTRY_VERIFY(scene->gate("c.mp4").isReached());
    press(Qt::Key_Tab, Qt::ControlModifier);
    for (int times = 0; times < tabs; ++times) {
        press(Qt::Key_Tab);
    }
    QCOMPARE(focused(), name);
    scene->gate("c.mp4").open();
    QTRY_VERIFY(scene->user.isIdle());
    QCOMPARE(focused(), name);
}

void FocusTest::tableTakesTheFocusInAnInactiveWindowToo()
{
    scene->user.chooseRows({2});
    focus("pushButtonDownloadFile");
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    pressFromOutside("pushButtonDownloadFile");
    QTRY_VERIFY(scene->gate("c.mp4").isReached());
    QCOMPARE(focused(), table);
    other.close();
    scene->user.window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&scene->user.window()));
    QCOMPARE(QApplication::focusWidget()->objectName(), table);
}

void FocusTest::downloadLeavesTheFocusElsewhereAlone()
{
    scene->user.chooseRows({2});
    focus("comboBox");
    pressFromOutside("pushButtonDownloadFile");
    QTRY_VERIFY(scene->gate("c.mp4").isReached());
    QCOMPARE(focused(), QStringLiteral("comboBox"));
}

void FocusTest::deleteTakesTheFocusFromDeleteAllToTheTable_data()
{
    QTest::addColumn<bool>("succeeds");
    QTest::newRow("deleted") << true;
    QTest::newRow("failed") << false;
}

void FocusTest::deleteTakesTheFocusFromDeleteAllToTheTable()
{
    QFETCH(bool, succeeds);
    if (!succeeds) {
        scene->camera->fail(fake::deleteTarget);
    }
    scene->user.chooseRows({1});
    focus("pushButtonDeleteAllFiles");
    pressFromOutside("pushButtonDeleteFile");
    QTRY_COMPARE(scene->camera->targets().size(), 1);
    QTRY_COMPARE(scene->user.table().rowCount(), succeeds ? 2 : 3);
    QCOMPARE(scene->user.canDeleteAll(), succeeds);
    QCOMPARE(focused(), table);
}

void FocusTest::deleteLeavesTheFocusElsewhereAlone()
{
    scene->user.chooseRows({1});
    focus("pushButtonDeleteFile");
    press(Qt::Key_Space);
    QCOMPARE(scene->user.table().rowCount(), 2);
    QCOMPARE(focused(), QStringLiteral("pushButtonDeleteFile"));
}

BELUN_NETWORK_TEST(FocusTest)

#include "FocusTest.moc"
