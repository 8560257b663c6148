// Delete, delete all and format, with scripted devices at their real addresses.
#include "tests/app/FormListing.h"
#include "tests/app/Scene.h"
#include "tests/app/WindowPlay.h"
#include "tests/kit/MessageBoxWatcher.h"
#include "tests/kit/TestMain.h"

#include <QApplication>
#include <QList>
#include <QMessageBox>
#include <QTimer>

class DeleteTest : public QObject
{
    Q_OBJECT

private slots:
    void conversation_data() { addConversations("delete"); }
    void conversation();
    void commandsAreSentWithTheirLiteralHeads();
    void withoutALinkNoButtonSendsAnything();
    void deleteWithoutASelectionSendsNothing();
    void deleteAllIsDisabledWhileADeleteRuns();
    void failedDeleteDisablesNoOtherButton();
    void missingItemSendsNothing();
    void allRowsSelectedByTheCheckBoxAreDeleted();
    void successIsReportedInChineseInBothLanguages_data();
    void successIsReportedInChineseInBothLanguages();
    void tableIsClearedWhenTheBoxHasClosed();
};

void DeleteTest::conversation()
{
    QFETCH(support::Conversation, conversation);
    playInWindow(conversation);
}

void DeleteTest::commandsAreSentWithTheirLiteralHeads()
{
    Scene scene({"\xe6\xb5\xb7 & %1.mp4"});
    for (const char* target : {fake::deleteTarget, fake::deleteAllTarget, fake::formatTarget}) {
        scene.camera->answer(target, "answer");
    }
    scene.user.deleteRows({0});
    scene.user.clickDeleteAll();
    scene.user.clickFormat();
    QCOMPARE(scene.camera->heads(),
             (Texts{commandHead("/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/"
                                "\xe6\xb5\xb7 & %1.mp4"),
                    commandHead("/cgi-bin/hi3510/deleteallfiles.cgi?"),
                    commandHead("/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1")}));
}

/// InterplayTest tests the buttons after a loss of the link.
void DeleteTest::withoutALinkNoButtonSendsAnything()
{
    Scene scene;
    scene.camera->holdFiles(fiveFiles);
    scene.user.clickBrowse();
    const int before = scene.camera->connectionCount();
    scene.user.chooseRows({0});
    for (const QString& button : listedNames({"QPushButton"})) {
        if (button != "pushButtonLinkBELUN" && button != "pushButtonEnterTFcard") {
            scene.user.probe().click(button);
        }
    }
    QCOMPARE(scene.camera->connectionCount(), before);
    QCOMPARE(scene.user.table().rowCount(), 5);
    QVERIFY(scene.user.canDeleteAll());
}

void DeleteTest::deleteWithoutASelectionSendsNothing()
{
    Scene scene(fiveFiles);
    const int before = scene.camera->connectionCount();
    scene.user.clickDelete();
    QCOMPARE(scene.camera->connectionCount(), before);
    QCOMPARE(scene.user.table().rowCount(), 5);
}

void DeleteTest::deleteAllIsDisabledWhileADeleteRuns()
{
    Scene scene({"a.mp4"});
    scene.camera->answer(fake::deleteTarget, "Success\r\n");
    struct StateLog : QObject
    {
        QList<bool> enabled;
        bool eventFilter(QObject* watched, QEvent* event) override
        {
            if (event->type() == QEvent::EnabledChange) {
                enabled.append(static_cast<QWidget*>(watched)->isEnabled());
            }
            return false;
        }
    } states;
    scene.user.button("pushButtonDeleteAllFiles").installEventFilter(&states);
    scene.user.deleteRows({0});
    QCOMPARE(states.enabled, (QList<bool>{false, true}));
}

void DeleteTest::failedDeleteDisablesNoOtherButton()
{
    Scene scene({"a.mp4"});
    scene.camera->fail(fake::deleteTarget);
    scene.user.deleteRows({0});
    QVERIFY(!scene.user.canDeleteAll());
    QVERIFY(scene.user.button("pushButtonDeleteFile").isEnabled());
    QVERIFY(scene.user.button("pushButtonFormatCard").isEnabled());
}

void DeleteTest::missingItemSendsNothing()
{
    Scene scene({"a.mp4", "b.mp4", "c.mp4"});
    scene.camera->answer(fake::deleteTarget, "Success\r\n");
    scene.user.chooseRows({0, 1, 2});
    delete scene.user.table().takeItem(1, 0);
    scene.user.clickDelete();
    QCOMPARE(scene.camera->targets(), (Texts{deleteOf("c.mp4"), deleteOf("a.mp4")}));
    QCOMPARE(scene.user.table().rowCount(), 1);
}

void DeleteTest::allRowsSelectedByTheCheckBoxAreDeleted()
{
    Scene scene({"a.mp4", "b.mp4", "c.mp4"});
    scene.camera->answer(fake::deleteTarget, "Success\r\n");
    scene.user.toggleSelectAll();
    scene.user.clickDelete();
    QCOMPARE(scene.camera->targets(),
             (Texts{deleteOf("c.mp4"), deleteOf("b.mp4"), deleteOf("a.mp4")}));
    QCOMPARE(scene.user.table().rowCount(), 0);
}

void DeleteTest::successIsReportedInChineseInBothLanguages_data()
{
    QTest::addColumn<bool>("isChinese");
    QTest::newRow("English") << false;
    QTest::newRow("Chinese") << true;
}

void DeleteTest::successIsReportedInChineseInBothLanguages()
{
    QFETCH(bool, isChinese);
    Scene scene(fiveFiles);
    if (isChinese) {
        scene.user.chooseChinese();
    }
    scene.camera->answer(fake::deleteAllTarget, "Success\r\n");
    scene.camera->answer(fake::formatTarget, "Success\r\n");
    support::MessageBoxWatcher watcher;
    watcher.answerNext(QMessageBox::Ok);
    watcher.answerNext(QMessageBox::Ok);
    scene.user.clickDeleteAll();
    scene.user.clickFormat();
    QCOMPARE(watcher.boxes().size(), 2);
    QCOMPARE(watcher.boxes()[0].text, QString("已删除卡内所有文件"));
    QCOMPARE(watcher.boxes()[1].text, QString("格式化卡成功"));
    for (const support::SeenBox& box : watcher.boxes()) {
        QCOMPARE(box.title, QString("单击消息"));
        QCOMPARE(box.standardButtons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(box.icon, QMessageBox::Information);
    }
}

void DeleteTest::tableIsClearedWhenTheBoxHasClosed()
{
    Scene scene(fiveFiles);
    scene.camera->answer(fake::deleteAllTarget, "Success\r\n");
    int rowsBehindTheBox = -1;
    const QWidget* parentOfTheBox = nullptr;
    QTimer look;
    connect(&look, &QTimer::timeout, &look, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            look.stop();
            rowsBehindTheBox = scene.user.table().rowCount();
            parentOfTheBox = box->parentWidget();
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        }
    });
    look.start(1);
    scene.user.clickDeleteAll();
    QCOMPARE(rowsBehindTheBox, 5);
    QCOMPARE(parentOfTheBox, &scene.user.window());
    QCOMPARE(scene.user.table().rowCount(), 0);
}

BELUN_NETWORK_TEST(DeleteTest)
#include "DeleteTest.moc"
