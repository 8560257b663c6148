// Delete, delete all and format, with scripted devices at their real addresses.
#include "tests/kit/FakeVehicle.h"
#include "tests/kit/MessageBoxWatcher.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <optional>

#include <QList>
#include <QMessageBox>
#include <QTimer>

namespace {

using Texts = QList<QByteArray>;

QByteArray head(const QByteArray& target)
{
    return "GET " + target +
           " HTTP/1.1\r\n"
           "Host: 192.168.1.120\r\n"
           "Accept: */*\r\n"
           "Accept-Language: zh-CN\r\n"
           "Connection: Keep-Alive\r\n"
           "User-Agent: SDK C++ http client\r\n"
           "\r\n";
}

const Texts fiveFiles{"a.mp4", "b.mp4", "c.mp4", "d.mp4", "e.mp4"};

} // namespace

class DeleteTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void withoutALinkNoButtonSendsAnything();
    void afterALossNoButtonSendsAnything();
    void deleteWithoutASelectionSendsNothing();
    void selectedRowsGoFromTheLastToTheFirst();
    void deleteSendsItsLiteralHead_data();
    void deleteSendsItsLiteralHead();
    void answerToADeleteIsNotExamined_data();
    void answerToADeleteIsNotExamined();
    void failedDeleteKeepsItsRowAndDisablesDeleteAll();
    void failureAmongDeletesDoesNotStopTheOthers();
    void deleteAllStaysDisabledUntilADeleteSucceeds();
    void deleteAllIsDisabledWhileADeleteRuns();
    void rowWithoutANameSendsNothing();
    void missingItemSendsNothing();
    void allRowsSelectedByTheCheckBoxAreDeleted();
    void deleteEmptiesTheOlderAnswer();
    void deleteLeavesTheStoredNamesAlone();
    void emptyingSendsItsLiteralHead_data();
    void emptyingSendsItsLiteralHead();
    void exactSuccessIsReportedInChineseInBothLanguages_data();
    void exactSuccessIsReportedInChineseInBothLanguages();
    void tableIsClearedWhenTheBoxHasClosed();
    void otherAnswersClearTheTableWithoutABox_data();
    void otherAnswersClearTheTableWithoutABox();
    void failedEmptyingLeavesTheTable_data();
    void failedEmptyingLeavesTheTable();

private:
    void linkAndBrowse(const Texts& names);

    std::optional<fake::Module> ground;
    std::optional<fake::Module> control;
    std::optional<fake::Camera> camera;
    std::optional<UserWindow> user;
};

void DeleteTest::init()
{
    ground.emplace(fake::groundAddress);
    control.emplace(fake::controlAddress);
    camera.emplace();
    user.emplace();
}

void DeleteTest::cleanup()
{
    QCOMPARE(camera->errors(), Texts());
    user.reset();
    camera.reset();
    control.reset();
    ground.reset();
}

/// Links, lists the files and discards the requests made so far.
void DeleteTest::linkAndBrowse(const Texts& names)
{
    user->clickLink();
    QVERIFY(user->showsLinkSuccess());
    QTRY_COMPARE(control->links(), QList<int>{1});
    camera->holdFiles(names);
    user->clickBrowse();
    QCOMPARE(user->table().rowCount(), names.size());
    camera->forgetRequests();
}

void DeleteTest::withoutALinkNoButtonSendsAnything()
{
    camera->holdFiles(fiveFiles);
    user->clickBrowse();
    camera->forgetRequests();
    const int before = camera->connectionCount();
    user->chooseRows({0});
    user->clickDelete();
    user->clickDeleteAll();
    user->clickFormat();
    QCOMPARE(camera->connectionCount(), before);
    QCOMPARE(user->table().rowCount(), 5);
    QVERIFY(user->canDeleteAll());
}

void DeleteTest::afterALossNoButtonSendsAnything()
{
    linkAndBrowse(fiveFiles);
    const int before = camera->connectionCount();
    control->link().close();
    QTRY_VERIFY(user->showsLinkFail());
    user->chooseRows({0});
    user->clickDelete();
    user->clickDeleteAll();
    user->clickFormat();
    QCOMPARE(camera->connectionCount(), before);
    QCOMPARE(user->table().rowCount(), 5);
}

void DeleteTest::deleteWithoutASelectionSendsNothing()
{
    linkAndBrowse(fiveFiles);
    const int before = camera->connectionCount();
    user->clickDelete();
    QCOMPARE(camera->connectionCount(), before);
    QCOMPARE(user->table().rowCount(), 5);
}

void DeleteTest::selectedRowsGoFromTheLastToTheFirst()
{
    linkAndBrowse(fiveFiles);
    camera->answer(fake::deleteTarget, "Success\r\n");
    user->chooseRows({1, 3});
    user->clickDelete();
    QCOMPARE(camera->targets(), (Texts{QByteArray(fake::deleteTarget) + "d.mp4",
                                       QByteArray(fake::deleteTarget) + "b.mp4"}));
    QCOMPARE(user->names(), (QStringList{"a.mp4", "c.mp4", "e.mp4"}));
    QVERIFY(user->canDeleteAll());
}

void DeleteTest::deleteSendsItsLiteralHead_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("ordinary") << QByteArray("VID0001.mp4");
    QTest::newRow("space and ampersand") << QByteArray("my file & more.mp4");
    QTest::newRow("percent signs and place marks") << QByteArray("%1%20.mp4");
    QTest::newRow("UTF-8") << QByteArray("\xe6\xb5\xb7.mp4");
}

void DeleteTest::deleteSendsItsLiteralHead()
{
    QFETCH(QByteArray, name);
    linkAndBrowse({name});
    camera->answer(fake::deleteTarget, "Success\r\n");
    user->chooseRows({0});
    user->clickDelete();
    QCOMPARE(camera->heads(),
             Texts{head("/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/" + name)});
    QCOMPARE(user->table().rowCount(), 0);
}

void DeleteTest::answerToADeleteIsNotExamined_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("an error word") << fake::withLength("Error\r\n");
    QTest::newRow("a status of 404")
        << QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nnone");
    QTest::newRow("a status of 500")
        << QByteArray("HTTP/1.1 500 Internal Server Error\r\nContent-Length: 1\r\n\r\n-");
    QTest::newRow("a single byte without a head") << QByteArray("\r\n.");
}

void DeleteTest::answerToADeleteIsNotExamined()
{
    QFETCH(QByteArray, answer);
    linkAndBrowse({"a.mp4"});
    camera->answerRaw(fake::deleteTarget, answer);
    user->chooseRows({0});
    user->clickDelete();
    QCOMPARE(user->table().rowCount(), 0);
    QVERIFY(user->canDeleteAll());
}

void DeleteTest::failedDeleteKeepsItsRowAndDisablesDeleteAll()
{
    linkAndBrowse(fiveFiles);
    camera->fail(fake::deleteTarget);
    user->chooseRows({2});
    user->clickDelete();
    QCOMPARE(camera->targets().size(), 1);
    QCOMPARE(user->table().rowCount(), 5);
    QVERIFY(!user->canDeleteAll());
    QVERIFY(user->button("pushButtonDeleteFile").isEnabled());
    QVERIFY(user->button("pushButtonFormatCard").isEnabled());
    const int before = camera->connectionCount();
    user->clickDeleteAll();
    QCOMPARE(camera->connectionCount(), before);
}

void DeleteTest::failureAmongDeletesDoesNotStopTheOthers()
{
    linkAndBrowse(fiveFiles);
    camera->answer(fake::deleteTarget, "Success\r\n");
    camera->fail(QByteArray(fake::deleteTarget) + "d.mp4");
    user->chooseRows({0, 3, 4});
    user->clickDelete();
    QCOMPARE(camera->targets(), (Texts{QByteArray(fake::deleteTarget) + "e.mp4",
                                       QByteArray(fake::deleteTarget) + "d.mp4",
                                       QByteArray(fake::deleteTarget) + "a.mp4"}));
    QCOMPARE(user->names(), (QStringList{"b.mp4", "c.mp4", "d.mp4"}));
    // Enabled, because the last delete succeeded.
    QVERIFY(user->canDeleteAll());
}

void DeleteTest::deleteAllStaysDisabledUntilADeleteSucceeds()
{
    linkAndBrowse(fiveFiles);
    camera->answer(fake::deleteTarget, "Success\r\n");
    camera->fail(QByteArray(fake::deleteTarget) + "a.mp4");
    user->chooseRows({0, 1});
    user->clickDelete();
    QCOMPARE(user->names(), (QStringList{"a.mp4", "c.mp4", "d.mp4", "e.mp4"}));
    QVERIFY(!user->canDeleteAll());
    user->clickBrowse();
    QVERIFY(!user->canDeleteAll());
    user->chooseRows({4});
    user->clickDelete();
    QVERIFY(user->canDeleteAll());
}

void DeleteTest::deleteAllIsDisabledWhileADeleteRuns()
{
    linkAndBrowse({"a.mp4"});
    camera->answer(fake::deleteTarget, "Success\r\n");
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
    user->button("pushButtonDeleteAllFiles").installEventFilter(&states);
    user->chooseRows({0});
    user->clickDelete();
    QCOMPARE(states.enabled, (QList<bool>{false, true}));
}

void DeleteTest::rowWithoutANameSendsNothing()
{
    linkAndBrowse({"a.mp4", "", "c.mp4"});
    camera->answer(fake::deleteTarget, "Success\r\n");
    user->chooseRows({0, 1, 2});
    user->clickDelete();
    QCOMPARE(camera->targets(), (Texts{QByteArray(fake::deleteTarget) + "c.mp4",
                                       QByteArray(fake::deleteTarget) + "a.mp4"}));
    QCOMPARE(user->names(), QStringList{""});
}

void DeleteTest::missingItemSendsNothing()
{
    linkAndBrowse({"a.mp4", "b.mp4", "c.mp4"});
    camera->answer(fake::deleteTarget, "Success\r\n");
    user->chooseRows({0, 1, 2});
    delete user->table().takeItem(1, 0);
    user->clickDelete();
    QCOMPARE(camera->targets(), (Texts{QByteArray(fake::deleteTarget) + "c.mp4",
                                       QByteArray(fake::deleteTarget) + "a.mp4"}));
    QCOMPARE(user->table().rowCount(), 1);
}

void DeleteTest::allRowsSelectedByTheCheckBoxAreDeleted()
{
    linkAndBrowse({"a.mp4", "b.mp4", "c.mp4"});
    camera->answer(fake::deleteTarget, "Success\r\n");
    QTest::keyClick(&user->probe().child<QWidget>(QStringLiteral("checkBoxSelectAllFiles")),
                    Qt::Key_Space);
    user->clickDelete();
    QCOMPARE(camera->targets(), (Texts{QByteArray(fake::deleteTarget) + "c.mp4",
                                       QByteArray(fake::deleteTarget) + "b.mp4",
                                       QByteArray(fake::deleteTarget) + "a.mp4"}));
    QCOMPARE(user->table().rowCount(), 0);
}

void DeleteTest::deleteEmptiesTheOlderAnswer()
{
    linkAndBrowse({"a.mp4", "b.mp4"});
    camera->answer(fake::deleteTarget, "Success\r\n");
    user->chooseRows({1});
    user->clickDelete();
    camera->forgetRequests();
    // If the delete had not cleared the received text, the creation time in the details from the
    // browse would be read as the count.
    user->clickBrowse();
    QCOMPARE(camera->targets()[1], QByteArray(fake::listTarget) + "2");
}

void DeleteTest::deleteLeavesTheStoredNamesAlone()
{
    linkAndBrowse({"a.mp4", "b.mp4"});
    camera->answer(fake::deleteTarget, "Success\r\n");
    user->chooseRows({0});
    user->clickDelete();
    camera->answer(fake::listTarget, "no name;no name;\r\n");
    user->clickBrowse();
    QCOMPARE(user->names(), (QStringList{"a.mp4", "b.mp4"}));
}

void DeleteTest::emptyingSendsItsLiteralHead_data()
{
    QTest::addColumn<bool>("format");
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("delete all") << false << QByteArray("/cgi-bin/hi3510/deleteallfiles.cgi?");
    QTest::newRow("format") << true
                            << QByteArray("/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1");
}

void DeleteTest::emptyingSendsItsLiteralHead()
{
    QFETCH(bool, format);
    QFETCH(QByteArray, target);
    linkAndBrowse(fiveFiles);
    camera->answer(target, "Error\r\n");
    format ? user->clickFormat() : user->clickDeleteAll();
    QCOMPARE(camera->heads(), Texts{head(target)});
}

void DeleteTest::exactSuccessIsReportedInChineseInBothLanguages_data()
{
    QTest::addColumn<bool>("format");
    QTest::addColumn<bool>("chinese");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("text");
    const QString deleted = QStringLiteral("已删除卡内所有文件");
    const QString formatted = QStringLiteral("格式化卡成功");
    const QByteArray success = fake::withLength("Success\r\n");
    QTest::newRow("delete all, English") << false << false << success << deleted;
    QTest::newRow("delete all, Chinese") << false << true << success << deleted;
    QTest::newRow("format, English") << true << false << success << formatted;
    QTest::newRow("format, Chinese") << true << true << success << formatted;
    QTest::newRow("whatever the status")
        << false << false
        << QByteArray("HTTP/1.1 500 Failed\r\nContent-Length: 9\r\n\r\nSuccess\r\n") << deleted;
    QTest::newRow("a zero ends the text")
        << true << false << fake::withLength(QByteArray("Success\r\n\0more", 14)) << formatted;
}

void DeleteTest::exactSuccessIsReportedInChineseInBothLanguages()
{
    QFETCH(bool, format);
    QFETCH(bool, chinese);
    QFETCH(QByteArray, answer);
    QFETCH(QString, text);
    linkAndBrowse(fiveFiles);
    if (chinese) {
        user->chooseChinese();
    }
    camera->answerRaw(format ? fake::formatTarget : fake::deleteAllTarget, answer);
    support::MessageBoxWatcher watcher;
    watcher.answerNext(QMessageBox::Ok);
    format ? user->clickFormat() : user->clickDeleteAll();
    QCOMPARE(watcher.boxes().size(), 1);
    const support::SeenBox& box = watcher.boxes().first();
    QCOMPARE(box.title, QStringLiteral("单击消息"));
    QCOMPARE(box.text, text);
    QCOMPARE(box.standardButtons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(box.icon, QMessageBox::Information);
    QCOMPARE(user->table().rowCount(), 0);
}

void DeleteTest::tableIsClearedWhenTheBoxHasClosed()
{
    linkAndBrowse(fiveFiles);
    camera->answer(fake::deleteAllTarget, "Success\r\n");
    int rowsBehindTheBox = -1;
    bool isChildOfTheWindow = false;
    QTimer look;
    connect(&look, &QTimer::timeout, &look, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            look.stop();
            rowsBehindTheBox = user->table().rowCount();
            isChildOfTheWindow = box->parentWidget() == &user->window();
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        }
    });
    look.start(1);
    user->clickDeleteAll();
    QCOMPARE(rowsBehindTheBox, 5);
    QVERIFY(isChildOfTheWindow);
    QCOMPARE(user->table().rowCount(), 0);
}

void DeleteTest::otherAnswersClearTheTableWithoutABox_data()
{
    QTest::addColumn<bool>("format");
    QTest::addColumn<QByteArray>("body");
    for (const bool format : {false, true}) {
        const auto row = [format](const char* name, const char* body) {
            QTest::addRow("%s, %s", format ? "format" : "delete all", name)
                << format << QByteArray(body);
        };
        row("error word", "Error\r\n");
        row("no line end", "Success");
        row("line feed only", "Success\n");
        row("trailing bytes", "Success\r\n\r\n");
        row("a blank before", " Success\r\n");
        row("lower case", "success\r\n");
    }
}

void DeleteTest::otherAnswersClearTheTableWithoutABox()
{
    QFETCH(bool, format);
    QFETCH(QByteArray, body);
    linkAndBrowse(fiveFiles);
    camera->answer(format ? fake::formatTarget : fake::deleteAllTarget, body);
    const support::MessageBoxWatcher watcher;
    format ? user->clickFormat() : user->clickDeleteAll();
    QCOMPARE(watcher.boxes().size(), 0);
    QCOMPARE(user->table().rowCount(), 0);
}

void DeleteTest::failedEmptyingLeavesTheTable_data()
{
    QTest::addColumn<bool>("format");
    QTest::addColumn<QByteArray>("answer");
    for (const bool format : {false, true}) {
        const char* button = format ? "format" : "delete all";
        QTest::addRow("%s, closed without an answer", button) << format << QByteArray();
        QTest::addRow("%s, closed after the head", button)
            << format << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n");
        QTest::addRow("%s, closed in the body", button)
            << format << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 90000\r\n\r\nSuccess\r\n");
    }
}

void DeleteTest::failedEmptyingLeavesTheTable()
{
    QFETCH(bool, format);
    QFETCH(QByteArray, answer);
    linkAndBrowse(fiveFiles);
    camera->answerRaw(format ? fake::formatTarget : fake::deleteAllTarget, answer);
    const support::MessageBoxWatcher watcher;
    format ? user->clickFormat() : user->clickDeleteAll();
    QCOMPARE(camera->targets().size(), 1);
    QCOMPARE(watcher.boxes().size(), 0);
    QCOMPARE(user->table().rowCount(), 5);
}

BELUN_NETWORK_TEST(DeleteTest)
#include "DeleteTest.moc"
