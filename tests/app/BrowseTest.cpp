// "Browse Files in Card" with a scripted camera at the real address: commands sent, rows shown.
#include "tests/kit/FakeVehicle.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <array>
#include <optional>

#include <QList>
#include <QVariant>

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

/// Returns the targets of the details requests, without their common prefix.
Texts namesAskedAbout(const fake::Camera& camera)
{
    Texts names;
    for (const QByteArray& target : camera.targets()) {
        if (target.startsWith(fake::infoTarget)) {
            names.append(target.mid(static_cast<int>(qstrlen(fake::infoTarget))));
        }
    }
    return names;
}

Texts numberedNames(int count)
{
    Texts names;
    for (int number = 0; number < count; ++number) {
        names.append("VID" + QByteArray::number(number) + ".mp4");
    }
    return names;
}

} // namespace

class BrowseTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void countListAndDetailsAreRequestedInOrderWithLiteralHeads();
    void browseNeedsNoLink();
    void rowsShowNameDateSizeAndDuration();
    void detailCellsAreGrayAndAligned();
    void countTextGoesIntoTheListCommandAsFound_data();
    void countTextGoesIntoTheListCommandAsFound();
    void emptyCardAsksForNoDetails();
    void countAboveTheListQueriesUnlistedSlotsToo();
    void unlistedSlotKeepsTheNameOfAnEarlierBrowse();
    void countBelowTheListLeavesTheOtherRowsWithoutDetails();
    void longListStopsAtRow127ButNotTheDetails_data();
    void longListStopsAtRow127ButNotTheDetails();
    void detailsAreQueriedUpToACountOf9999();
    void nameOf29CharactersFitsItsSlot();
    void longerNameRunsIntoTheNextSlot();
    void nameBeyondTheWholeTableIsCut();
    void namesGoOutUnescaped_data();
    void namesGoOutUnescaped();
    void entryWithoutAFolderTakesTheNextOnesName();
    void entryWithoutANameShowsItsSlotsOlderText();
    void listWithoutItsEndStopsAtTheEndOfTheAnswer_data();
    void listWithoutItsEndStopsAtTheEndOfTheAnswer();
    void detailsAreFoundInAnyOrderAndSizesShownInWholeUnits();
    void secondBrowseReadsItsCountFromTheOlderText();
    void secondBrowseReadsACreationTimeAsCount_data();
    void secondBrowseReadsACreationTimeAsCount();
    void failedCountLeavesTheTableAlone_data();
    void failedCountLeavesTheTableAlone();
    void failedListLeavesTheTableAlone_data();
    void failedListLeavesTheTableAlone();
    void failedDetailsLeaveTheCellsEmptyAndGoOn();
    void failedAnswerPrecedesTheNextCount();
    void unreachableCameraLeavesTheTableAlone();
    void anyStatusCountsAsAnAnswer();
    void answerShorterThanAllBeforeEndsWithItsFirstReceive();
    void oneChunkedAnswerEndsAllLaterOnesAfterALine();
    void bytesAfterAZeroAreIgnored();
    void longTextsAreHarmless();

private:
    std::optional<fake::Camera> camera;
};

void BrowseTest::init()
{
    camera.emplace();
}

void BrowseTest::cleanup()
{
    if (camera) {
        QCOMPARE(camera->errors(), Texts());
        camera.reset();
    }
}

void BrowseTest::countListAndDetailsAreRequestedInOrderWithLiteralHeads()
{
    camera->holdFiles({"VID0001.mp4", "VID0002.mp4"});
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(camera->heads(),
             (Texts{head("/cgi-bin/hi3510/getfilecount.cgi?"),
                    head("/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=2"),
                    head("/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/VID0001.mp4"),
                    head("/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/VID0002.mp4")}));
}

void BrowseTest::browseNeedsNoLink()
{
    camera->holdFiles({"a.mp4"});
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.status(), QString());
    QCOMPARE(user.names(), QStringList{"a.mp4"});
}

void BrowseTest::rowsShowNameDateSizeAndDuration()
{
    camera->holdFiles({"VID0001.mp4", "VID0002.mp4"});
    camera->answer(QByteArray(fake::infoTarget) + "VID0002.mp4",
                   "create=\"20211231235959\";size=\"2047\";time=\"5\";\r\n");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.table().rowCount(), 2);
    QCOMPARE(user.row(0), (QStringList{"VID0001.mp4", "2020-01-31  12:45:02", "1MB", "37s"}));
    QCOMPARE(user.row(1), (QStringList{"VID0002.mp4", "2021-12-31  23:59:59", "1KB", "5s"}));
}

void BrowseTest::detailCellsAreGrayAndAligned()
{
    camera->holdFiles({"a.mp4"});
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.table().item(0, 0)->data(Qt::ForegroundRole), QVariant());
    QCOMPARE(user.table().item(0, 0)->data(Qt::TextAlignmentRole), QVariant());
    const std::array<int, 4> alignments{0, 0x84, 0x02, 0x84};
    for (int column = 1; column < 4; ++column) {
        const QTableWidgetItem* item = user.table().item(0, column);
        QCOMPARE(item->foreground().color(), QColor(128, 128, 128));
        QCOMPARE(item->data(Qt::TextAlignmentRole).toInt(),
                 alignments[static_cast<std::size_t>(column)]);
    }
}

void BrowseTest::countTextGoesIntoTheListCommandAsFound_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("argument");
    QTest::addColumn<int>("asked");
    QTest::newRow("bare") << QByteArray("=\"2\";") << QByteArray("2") << 2;
    QTest::newRow("text around") << QByteArray("x=\"1\"; y=\"3\";") << QByteArray("1") << 1;
    QTest::newRow("leading zeros") << QByteArray("=\"002\";") << QByteArray("002") << 2;
    QTest::newRow("trailing letters") << QByteArray("=\"1 file\";") << QByteArray("1 file") << 1;
    QTest::newRow("blank before") << QByteArray("=\" 2\";") << QByteArray(" 2") << 2;
    QTest::newRow("no number") << QByteArray("=\"none\";") << QByteArray("none") << 0;
    QTest::newRow("empty") << QByteArray("=\"\";") << QByteArray() << 0;
    QTest::newRow("zero") << QByteArray("=\"0\";") << QByteArray("0") << 0;
    QTest::newRow("negative") << QByteArray("=\"-3\";") << QByteArray("-3") << 0;
    QTest::newRow("no left marker") << QByteArray("2\";") << QByteArray() << 0;
    QTest::newRow("no right marker") << QByteArray("=\"2\"") << QByteArray() << 0;
    QTest::newRow("10000 is beyond the table: the rows listed")
        << QByteArray("=\"10000\";") << QByteArray("10000") << 2;
    QTest::newRow("more than an int: the rows listed")
        << QByteArray("=\"4294967297\";") << QByteArray("4294967297") << 2;
    QTest::newRow("less than an int: the rows listed")
        << QByteArray("=\"-4294967297\";") << QByteArray("-4294967297") << 2;
}

void BrowseTest::countTextGoesIntoTheListCommandAsFound()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, argument);
    QFETCH(int, asked);
    camera->holdFiles({"a.mp4", "b.mp4"});
    camera->answer(fake::countTarget, answer);
    const UserWindow user;
    user.clickBrowse();
    QVERIFY(camera->targets().size() >= 2);
    QCOMPARE(camera->targets()[1], "/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=" + argument);
    QCOMPARE(namesAskedAbout(*camera), (Texts{"a.mp4", "b.mp4"}).mid(0, asked));
    QCOMPARE(user.names(), (QStringList{"a.mp4", "b.mp4"}));
}

void BrowseTest::emptyCardAsksForNoDetails()
{
    const UserWindow user;
    camera->holdFiles({"a.mp4"});
    user.clickBrowse();
    QCOMPARE(user.table().rowCount(), 1);
    // Details without a marker, so that the next count is found in its own answer, not in the
    // details before it.
    camera->answer(fake::infoTarget, "nothing\r\n");
    user.clickBrowse();
    camera->forgetRequests();
    camera->answer(fake::countTarget, "=\"0\";");
    camera->answer(fake::listTarget, "\r\nsd/DCIM/100ZEPNA/hidden.mp4;\r\n");
    user.clickBrowse();
    QCOMPARE(user.table().rowCount(), 0);
    QCOMPARE(camera->targets(), (Texts{fake::countTarget, QByteArray(fake::listTarget) + "0"}));
}

void BrowseTest::countAboveTheListQueriesUnlistedSlotsToo()
{
    camera->holdFiles({"a.mp4", "b.mp4"});
    camera->answer(fake::countTarget, "=\"3\";");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(namesAskedAbout(*camera), (Texts{"a.mp4", "b.mp4", ""}));
    QCOMPARE(user.table().rowCount(), 2);
    QCOMPARE(user.row(1), (QStringList{"b.mp4", "2020-01-31  12:45:02", "1MB", "37s"}));
}

void BrowseTest::unlistedSlotKeepsTheNameOfAnEarlierBrowse()
{
    camera->holdFiles({"a.mp4", "b.mp4", "c.mp4"});
    camera->answer(fake::infoTarget, "nothing\r\n");
    const UserWindow user;
    user.clickBrowse();
    camera->forgetRequests();
    camera->answer(fake::listTarget, fake::fileList({"d.mp4", "e.mp4"}));
    user.clickBrowse();
    QCOMPARE(user.names(), (QStringList{"d.mp4", "e.mp4"}));
    QCOMPARE(namesAskedAbout(*camera), (Texts{"d.mp4", "e.mp4", "c.mp4"}));
}

void BrowseTest::countBelowTheListLeavesTheOtherRowsWithoutDetails()
{
    camera->holdFiles({"a.mp4", "b.mp4", "c.mp4"});
    camera->answer(fake::countTarget, "=\"1\";");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(namesAskedAbout(*camera), Texts{"a.mp4"});
    QCOMPARE(user.row(0), (QStringList{"a.mp4", "2020-01-31  12:45:02", "1MB", "37s"}));
    for (const int row : {1, 2}) {
        for (int column = 1; column < 4; ++column) {
            QVERIFY(user.table().item(row, column) == nullptr);
        }
    }
}

void BrowseTest::longListStopsAtRow127ButNotTheDetails_data()
{
    QTest::addColumn<int>("listed");
    QTest::addColumn<int>("rows");
    QTest::newRow("127 entries") << 127 << 127;
    QTest::newRow("128 entries, the last row") << 128 << 128;
    QTest::newRow("129 entries") << 129 << 128;
    QTest::newRow("200 entries") << 200 << 128;
    QTest::newRow("300 entries, a byte's whole range") << 300 << 128;
}

void BrowseTest::longListStopsAtRow127ButNotTheDetails()
{
    QFETCH(int, listed);
    QFETCH(int, rows);
    const Texts names = numberedNames(listed);
    camera->holdFiles(names);
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.table().rowCount(), rows);
    QCOMPARE(user.row(0).first(), QStringLiteral("VID0.mp4"));
    QCOMPARE(user.row(rows - 1), (QStringList{QString::fromLatin1(names[rows - 1]),
                                              "2020-01-31  12:45:02", "1MB", "37s"}));
    Texts asked = names.mid(0, rows);
    while (asked.size() < listed) {
        asked.append(QByteArray());
    }
    QCOMPARE(namesAskedAbout(*camera), asked);
}

void BrowseTest::detailsAreQueriedUpToACountOf9999()
{
    camera->holdFiles({"a.mp4"});
    camera->answer(fake::countTarget, "=\"9999\";");
    const UserWindow user;
    user.clickBrowse();
    const Texts asked = namesAskedAbout(*camera);
    QCOMPARE(asked.size(), 9999);
    QCOMPARE(asked.first(), QByteArray("a.mp4"));
    QCOMPARE(asked.count(QByteArray()), 9998);
    QCOMPARE(user.table().rowCount(), 1);
}

void BrowseTest::nameOf29CharactersFitsItsSlot()
{
    camera->holdFiles({"abcdefghijklmnopqrstuvwxy.mp4", "b.mp4"});
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.names(), (QStringList{"abcdefghijklmnopqrstuvwxy.mp4", "b.mp4"}));
    QCOMPARE(namesAskedAbout(*camera), (Texts{"abcdefghijklmnopqrstuvwxy.mp4", "b.mp4"}));
}

void BrowseTest::longerNameRunsIntoTheNextSlot()
{
    // 36 characters: six of them are in the second slot until that slot is written.
    camera->holdFiles({"abcdefghijklmnopqrstuvwxyz012345.mp4", "b.mp4"});
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.names(), (QStringList{"abcdefghijklmnopqrstuvwxyz012345.mp4", "b.mp4"}));
    QCOMPARE(namesAskedAbout(*camera), (Texts{"abcdefghijklmnopqrstuvwxyz0123b.mp4", "b.mp4"}));
}

void BrowseTest::nameBeyondTheWholeTableIsCut()
{
    camera->holdFiles({QByteArray(400000, 'n')});
    camera->answer(fake::countTarget, "=\"0\";");
    const UserWindow user;
    user.window().hide(); // avoids painting the long name, which takes time
    user.clickBrowse();
    QCOMPARE(user.table().rowCount(), 1);
    QCOMPARE(user.row(0).first().size(), 9999 * 30 - 1);
}

void BrowseTest::namesGoOutUnescaped_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("space") << QByteArray("my file.mp4");
    QTest::newRow("ampersand") << QByteArray("a&b=c.mp4");
    QTest::newRow("percent sign") << QByteArray("%20%1%2.mp4");
    QTest::newRow("question mark and number sign") << QByteArray("a?b#c.mp4");
    QTest::newRow("plus and quote") << QByteArray("a+\"b\".mp4");
    QTest::newRow("accented letter in UTF-8") << QByteArray("caf\xc3\xa9.mp4");
    QTest::newRow("Chinese in UTF-8") << QByteArray("\xe6\xb5\xb7.mp4");
}

void BrowseTest::namesGoOutUnescaped()
{
    QFETCH(QByteArray, name);
    camera->holdFiles({name});
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.names(), QStringList{QString::fromUtf8(name)});
    QCOMPARE(camera->heads().last(),
             head("/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/" + name));
}

void BrowseTest::entryWithoutAFolderTakesTheNextOnesName()
{
    camera->holdFiles({});
    camera->answer(fake::listTarget, "note;sd/DCIM/100ZEPNA/b.mp4;\r\n");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.names(), (QStringList{"b.mp4", "b.mp4"}));
}

void BrowseTest::entryWithoutANameShowsItsSlotsOlderText()
{
    camera->holdFiles({"a.mp4", "b.mp4"});
    const UserWindow user;
    user.clickBrowse();
    camera->answer(fake::listTarget, "sd/DCIM/100ZEPNA/c.mp4;note;note;\r\n");
    user.clickBrowse();
    QCOMPARE(user.names(), (QStringList{"c.mp4", "b.mp4", ""}));
}

void BrowseTest::listWithoutItsEndStopsAtTheEndOfTheAnswer_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("no carriage return")
        << QByteArray("ZEPNA/a.mp4;ZEPNA/b.mp4;") << QStringList{"a.mp4", "b.mp4"};
    QTest::newRow("no last semicolon")
        << QByteArray("ZEPNA/a.mp4;ZEPNA/b.mp4") << QStringList{"a.mp4", ""};
    QTest::newRow("line feed only") << QByteArray("ZEPNA/a.mp4;\n") << QStringList{"a.mp4", ""};
    QTest::newRow("no entry at all") << QByteArray("error") << QStringList{""};
}

void BrowseTest::listWithoutItsEndStopsAtTheEndOfTheAnswer()
{
    QFETCH(QByteArray, list);
    QFETCH(QStringList, names);
    camera->holdFiles({});
    camera->answer(fake::listTarget, list);
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.names(), names);
}

/// Other details are covered by the test of card/FileInfoText.
void BrowseTest::detailsAreFoundInAnyOrderAndSizesShownInWholeUnits()
{
    camera->holdFiles({"a.mp4"});
    camera->answer(fake::infoTarget, "time=\"37\";size=\"1048576\";create=\"20200131124502\";");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.row(0), (QStringList{"a.mp4", "2020-01-31  12:45:02", "1MB", "37s"}));
}

void BrowseTest::secondBrowseReadsItsCountFromTheOlderText()
{
    camera->holdFiles({"a.mp4", "b.mp4", "c.mp4"});
    camera->answer(QByteArray(fake::infoTarget) + "c.mp4",
                   "channel=\"2\";create=\"20200131124502\";size=\"1\";time=\"1\";");
    const UserWindow user;
    user.clickBrowse();
    camera->forgetRequests();
    user.clickBrowse();
    QCOMPARE(camera->targets()[1], QByteArray(fake::listTarget) + "2");
    QCOMPARE(namesAskedAbout(*camera), (Texts{"a.mp4", "b.mp4"}));
    QCOMPARE(user.names(), (QStringList{"a.mp4", "b.mp4", "c.mp4"}));
    QVERIFY(user.table().item(2, 1) == nullptr);
}

void BrowseTest::secondBrowseReadsACreationTimeAsCount_data()
{
    QTest::addColumn<QByteArray>("created");
    // The low 32 bits, as signed numbers, are 899931414 and -1951630089.
    QTest::newRow("cut to 32 bits it is positive") << QByteArray("20200131124502");
    QTest::newRow("cut to 32 bits it is negative") << QByteArray("20240229235959");
}

void BrowseTest::secondBrowseReadsACreationTimeAsCount()
{
    QFETCH(QByteArray, created);
    camera->holdFiles({"a.mp4", "b.mp4"});
    camera->answer(fake::infoTarget, "create=\"" + created + "\";size=\"4096\";time=\"1\";");
    const UserWindow user;
    user.clickBrowse();
    camera->forgetRequests();
    camera->answer(fake::countTarget, "=\"3\";");
    camera->answer(fake::listTarget, fake::fileList({"d.mp4", "e.mp4", "f.mp4"}));
    user.clickBrowse();
    QCOMPARE(camera->targets()[1], fake::listTarget + created);
    QCOMPARE(namesAskedAbout(*camera), (Texts{"d.mp4", "e.mp4", "f.mp4"}));
    QCOMPARE(user.names(), (QStringList{"d.mp4", "e.mp4", "f.mp4"}));
    QCOMPARE(user.row(2).mid(2), (QStringList{"4KB", "1s"}));
}

void BrowseTest::failedCountLeavesTheTableAlone_data()
{
    QTest::addColumn<bool>("reset");
    QTest::newRow("closed without an answer") << false;
    QTest::newRow("reset without an answer") << true;
}

void BrowseTest::failedCountLeavesTheTableAlone()
{
    QFETCH(bool, reset);
    camera->holdFiles({"a.mp4", "b.mp4"});
    const UserWindow user;
    user.clickBrowse();
    camera->forgetRequests();
    camera->on(fake::countTarget, [reset](support::Peer& peer) {
        if (reset) {
            peer.reset();
        }
    });
    user.clickBrowse();
    QCOMPARE(camera->targets(), Texts{fake::countTarget});
    QCOMPARE(user.names(), (QStringList{"a.mp4", "b.mp4"}));
    QCOMPARE(user.row(1).last(), QStringLiteral("37s"));
}

void BrowseTest::failedListLeavesTheTableAlone_data()
{
    failedCountLeavesTheTableAlone_data();
}

void BrowseTest::failedListLeavesTheTableAlone()
{
    QFETCH(bool, reset);
    camera->holdFiles({"a.mp4", "b.mp4"});
    camera->answer(fake::infoTarget, "nothing\r\n");
    const UserWindow user;
    user.clickBrowse();
    camera->forgetRequests();
    camera->on(fake::listTarget, [reset](support::Peer& peer) {
        if (reset) {
            peer.reset();
        }
    });
    user.clickBrowse();
    QCOMPARE(camera->targets(), (Texts{fake::countTarget, QByteArray(fake::listTarget) + "2"}));
    QCOMPARE(user.names(), (QStringList{"a.mp4", "b.mp4"}));
    QCOMPARE(user.row(1).last(), QStringLiteral("s"));
}

void BrowseTest::failedDetailsLeaveTheCellsEmptyAndGoOn()
{
    camera->holdFiles({"a.mp4", "b.mp4", "c.mp4"});
    camera->fail(QByteArray(fake::infoTarget) + "b.mp4");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(namesAskedAbout(*camera), (Texts{"a.mp4", "b.mp4", "c.mp4"}));
    QCOMPARE(user.row(0), (QStringList{"a.mp4", "2020-01-31  12:45:02", "1MB", "37s"}));
    for (int column = 1; column < 4; ++column) {
        QVERIFY(user.table().item(1, column) == nullptr);
    }
    QCOMPARE(user.row(2), (QStringList{"c.mp4", "2020-01-31  12:45:02", "1MB", "37s"}));
}

void BrowseTest::failedAnswerPrecedesTheNextCount()
{
    camera->holdFiles({"a.mp4", "b.mp4"});
    camera->answerRaw(fake::countTarget, "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n=\"1\";");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(camera->targets(), Texts{fake::countTarget});
    QCOMPARE(user.table().rowCount(), 0);
    camera->answer(fake::countTarget, "=\"2\";");
    user.clickBrowse();
    QCOMPARE(camera->targets()[2], QByteArray(fake::listTarget) + "1");
    QCOMPARE(namesAskedAbout(*camera), Texts{"a.mp4"});
}

void BrowseTest::unreachableCameraLeavesTheTableAlone()
{
    camera->holdFiles({"a.mp4"});
    const UserWindow user;
    user.clickBrowse();
    camera.reset();
    user.clickBrowse();
    QCOMPARE(user.names(), QStringList{"a.mp4"});
}

void BrowseTest::anyStatusCountsAsAnAnswer()
{
    camera->holdFiles({"a.mp4"});
    camera->answerRaw(fake::countTarget,
                      "HTTP/1.1 404 Not Found\r\nContent-Length: 5\r\n\r\n=\"1\";");
    camera->answerRaw(fake::listTarget, "HTTP/1.1 500 Internal Server Error\r\n"
                                        "Content-Length: 13\r\n\r\nZEPNA/x.mp4;\r");
    camera->answerRaw(fake::infoTarget,
                      "HTTP/1.1 302 Found\r\nContent-Length: 9\r\n\r\ntime=\"4\";");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.names(), QStringList{"x.mp4"});
    QCOMPARE(user.row(0).last(), QStringLiteral("4s"));
}

void BrowseTest::answerShorterThanAllBeforeEndsWithItsFirstReceive()
{
    camera->holdFiles({"a.mp4"});
    const UserWindow user;
    user.clickBrowse(); // receives more than a hundred bytes in total
    camera->on(fake::listTarget, [](support::Peer& peer) {
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 48\r\n\r\n"
                  "ZEPNA/b.mp4;ZEPNA/c.mp4;");
        // The client has received enough. If it waited for more, this wait would time out and fail.
        peer.waitUntilClosedByClient();
    });
    user.clickBrowse();
    QCOMPARE(user.names(), (QStringList{"b.mp4", "c.mp4"}));
}

void BrowseTest::oneChunkedAnswerEndsAllLaterOnesAfterALine()
{
    camera->holdFiles({"a.mp4", "b.mp4"});
    const UserWindow user;
    user.clickBrowse();
    camera->forgetRequests();
    camera->answerRaw(fake::infoTarget, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                        "9\r\ntime=\"5\";\r\n0\r\n\r\n");
    user.clickBrowse();
    // The details of the first file arrived whole. The answer for the second file ended after its
    // first line, the chunk size "9".
    QCOMPARE(user.row(0).last(), QStringLiteral("5s"));
    QCOMPARE(user.row(1).mid(1), (QStringList{"--  ::", "KB", "s"}));
    camera->forgetRequests();
    user.clickBrowse();
    QCOMPARE(camera->targets(), (Texts{fake::countTarget, fake::listTarget}));
    QCOMPARE(user.table().rowCount(), 0);
}

void BrowseTest::bytesAfterAZeroAreIgnored()
{
    camera->holdFiles({});
    camera->answer(fake::countTarget, QByteArray("=\"1\";\0=\"7\";", 11));
    camera->answer(fake::listTarget, QByteArray("ZEPNA/a.mp4;\0ZEPNA/b.mp4;\r\n", 27));
    camera->answer(fake::infoTarget, QByteArray("create=\"20200131124502\";\0time=\"4\";", 34));
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(user.names(), QStringList{"a.mp4"});
    QCOMPARE(user.row(0).first(), QStringLiteral("a.mp4"));
    QVERIFY2(user.row(0).last() != QLatin1String("4s"), qPrintable(user.row(0).last()));
}

void BrowseTest::longTextsAreHarmless()
{
    const QByteArray digits(2000, '9');
    camera->holdFiles({"a.mp4"});
    camera->answer(fake::countTarget, "=\"" + digits + "\";");
    camera->answer(fake::infoTarget, "create=\"" + digits + "\";size=\"4096" +
                                         QByteArray(2000, ' ') + "\";time=\"" + digits + "\";");
    const UserWindow user;
    user.clickBrowse();
    QCOMPARE(camera->targets()[1], fake::listTarget + digits);
    QCOMPARE(user.row(0), (QStringList{"a.mp4", "9999-99-99  99:99:99", "4KB",
                                       QString::fromLatin1(digits) + "s"}));
}

BELUN_NETWORK_TEST(BrowseTest)
#include "BrowseTest.moc"
