// "Browse Files in Card" with a scripted camera at the real address.
#include "tests/app/Scene.h"
#include "tests/app/WindowPlay.h"
#include "tests/kit/TestMain.h"

#include <QList>

class BrowseTest : public QObject
{
    Q_OBJECT

private slots:
    void conversation_data() { addConversations("browse"); }
    void conversation();
    void commandsAreSentWithTheirLiteralHeads();
    void browseNeedsNoLink();
    void longListStopsAtRow127ButNotTheDetails_data();
    void longListStopsAtRow127ButNotTheDetails();
    void unreachableCameraLeavesTheTableAlone();
    void longTextsAreHarmless();
};

void BrowseTest::conversation()
{
    QFETCH(support::Conversation, conversation);
    playInWindow(conversation);
}

void BrowseTest::commandsAreSentWithTheirLiteralHeads()
{
    Scene scene;
    scene.camera->holdFiles({"VID0001.mp4", "\xe6\xb5\xb7 %1.mp4"});
    scene.user.clickBrowse();
    QCOMPARE(
        scene.camera->heads(),
        (Texts{commandHead("/cgi-bin/hi3510/getfilecount.cgi?"),
               commandHead("/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=2"),
               commandHead("/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/VID0001.mp4"),
               commandHead("/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/"
                           "\xe6\xb5\xb7 %1.mp4")}));
}

void BrowseTest::browseNeedsNoLink()
{
    Scene scene;
    scene.camera->holdFiles({"a.mp4"});
    scene.user.clickBrowse();
    QCOMPARE(scene.user.status(), QString());
    QCOMPARE(scene.user.names(), QStringList{"a.mp4"});
}

void BrowseTest::longListStopsAtRow127ButNotTheDetails_data()
{
    QTest::addColumn<int>("listed");
    QTest::addColumn<int>("rows");
    QTest::newRow("128 entries, the last row") << 128 << 128;
    QTest::newRow("129 entries") << 129 << 128;
    QTest::newRow("300 entries, more than a byte can count") << 300 << 128;
}

void BrowseTest::longListStopsAtRow127ButNotTheDetails()
{
    QFETCH(int, listed);
    QFETCH(int, rows);
    Texts names;
    for (int number = 0; number < listed; ++number) {
        names.append("VID" + QByteArray::number(number) + ".mp4");
    }
    Scene scene;
    scene.camera->holdFiles(names);
    scene.user.clickBrowse();
    QCOMPARE(scene.user.table().rowCount(), rows);
    QCOMPARE(scene.user.row(0).first(), QString("VID0.mp4"));
    QCOMPARE(scene.user.row(rows - 1),
             (QStringList{QString(names[rows - 1]), "2020-01-31  12:45:02", "1MB", "37s"}));
    Texts expected;
    for (int number = 0; number < listed; ++number) {
        expected.append(fake::infoTarget + (number < rows ? names[number] : QByteArray()));
    }
    QCOMPARE(scene.camera->targets().mid(2), expected);
}

void BrowseTest::unreachableCameraLeavesTheTableAlone()
{
    Scene scene({"a.mp4"});
    scene.camera.reset();
    scene.user.clickBrowse();
    QCOMPARE(scene.user.names(), QStringList{"a.mp4"});
}

void BrowseTest::longTextsAreHarmless()
{
    const QByteArray digits(2000, '9');
    Scene scene;
    scene.camera->answer(fake::countTarget, "=\"" + digits + "\";");
    scene.camera->answer(fake::listTarget, fake::fileList({"a.mp4"}));
    scene.camera->answer(fake::infoTarget, "create=\"" + digits + "\";time=\"" + digits + "\";");
    scene.user.clickBrowse();
    QCOMPARE(scene.camera->targets()[1], fake::listTarget + digits);
    QCOMPARE(scene.user.row(0).last(), QString(digits) + "s");
}

BELUN_NETWORK_TEST(BrowseTest)
#include "BrowseTest.moc"
