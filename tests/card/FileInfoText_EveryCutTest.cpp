// Valid and invalid details of a recording, split and closed at every byte.
#include "card/FileInfoText.h"

#include "tests/card/AnswerCuts.h"
#include "tests/kit/TestMain.h"

#include <string>
#include <vector>

#include <QObject>
#include <QString>
#include <QTest>

using support::Piece;
using Pieces = std::vector<Piece>;
Q_DECLARE_METATYPE(Pieces)

namespace {

/// Returns date, size and duration, separated by bars.
std::string shown(const std::string& answer)
{
    const card::FileInfoText texts = card::readFileInfo(answer.c_str());
    return support::printable((texts.date + '|' + texts.size + '|' + texts.duration).toStdString());
}

} // namespace

class FileInfoText_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void detailsAreShownAsFarAsReceived_data();
    void detailsAreShownAsFarAsReceived();
};

void FileInfoText_EveryCutTest::detailsAreShownAsFarAsReceived_data()
{
    QTest::addColumn<Pieces>("pieces");
    const auto row = [](const char* name, const Pieces& pieces) { QTest::newRow(name) << pieces; };
    // For a field that was not received, the text of the field before it is used.
    row("recording", {{"create=\"20200131124502\"", "--  ::|KB|s"},
                      {";size=\"1572864\"", "2020-01-31  12:45:02|858MB|858s"},
                      {";time=\"37\"", "2020-01-31  12:45:02|1MB|1s"},
                      {";\r\n", "2020-01-31  12:45:02|1MB|37s"}});
    row("turned round", {{"time=\"37\"", "--  ::|KB|s"},
                         {";size=\"4096\"", "--  ::|KB|37s"},
                         {";create=\"20200131124502\"", "--  ::|4KB|37s"},
                         {";", "2020-01-31  12:45:02|4KB|37s"}});
    row("no size", {{"create=\"20200131124502\"", "--  ::|KB|s"},
                    {";time=\"5\"", "2020-01-31  12:45:02|858MB|858s"},
                    {";", "2020-01-31  12:45:02|858MB|5s"}});
    row("size not closed", {{"create=\"20200131124502\"", "--  ::|KB|s"},
                            {";size=\"4096;time=\"3\"", "2020-01-31  12:45:02|858MB|858s"},
                            {";", "2020-01-31  12:45:02|4KB|3s"}});
    row("short creation time",
        {{"create=\"202001\"", "--  ::|KB|s"}, {";", "2020-01-  ::|197KB|197s"}});
    row("small size",
        {{"size=\"500\"", "--  ::|KB|s"}, {";time=\"1\"", "--  ::|KB|s"}, {";", "--  ::|KB|1s"}});
    row("negative size", {{"size=\"-2048\"", "--  ::|KB|s"}, {";", "--  ::|-2048KB|-2048s"}});
    row("bytes outside ASCII",
        {{"time=\"\xE6\xB5\xB7\"", "--  ::|KB|s"}, {";", "--  ::|KB|\\xE6\\xB5\\xB7s"}});
    row("zero byte ends it",
        {{"time=\"9\"", "--  ::|KB|s"}, {std::string(";\0size=\"4096\";", 14), "--  ::|KB|9s"}});
    row("no such file", {{"no such file\r\n", "--  ::|KB|s"}});
}

void FileInfoText_EveryCutTest::detailsAreShownAsFarAsReceived()
{
    QFETCH(Pieces, pieces);
    checkEveryCut(pieces, shown);
}

BELUN_TEST(FileInfoText_EveryCutTest)
#include "FileInfoText_EveryCutTest.moc"
