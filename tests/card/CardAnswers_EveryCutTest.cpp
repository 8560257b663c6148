// Valid and invalid list and count answers, split and closed at every byte.
#include "card/CardAnswers.h"

#include "card/CardCommands.h"
#include "tests/card/AnswerCuts.h"
#include "tests/kit/TestMain.h"

#include <string>
#include <vector>

#include <QObject>
#include <QTest>

using support::Piece;
using Pieces = std::vector<Piece>;
Q_DECLARE_METATYPE(Pieces)

namespace {

/// Returns the names in a list, each in angle brackets, with a dash for an entry without a name.
std::string namesIn(const std::string& answer)
{
    std::string names;
    card::FileListWalk walk(answer.c_str());
    while (const auto entry = walk.next()) {
        names += entry->name ? '<' + support::printable(std::string(*entry->name)) + '>' : "-";
    }
    return names;
}

std::string countOf(const std::string& answer)
{
    const auto text = card::textBetween(answer.c_str(), card::countStart, card::valueEnd);
    return text ? '<' + std::string(*text) + '>' : "none";
}

} // namespace

class CardAnswers_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void listIsReadAsFarAsReceived_data();
    void listIsReadAsFarAsReceived();
    void countIsReadAsFarAsReceived_data();
    void countIsReadAsFarAsReceived();
};

void CardAnswers_EveryCutTest::listIsReadAsFarAsReceived_data()
{
    QTest::addColumn<Pieces>("pieces");
    const auto row = [](const char* name, const Pieces& pieces) { QTest::newRow(name) << pieces; };
    row("two recordings", {{"sd/DCIM/100ZEPNA/a.mp4", "-"},
                           {";", "<a.mp4>"},
                           {"sd/DCIM/100ZEPNA/b.mp4", "<a.mp4>-"},
                           {";", "<a.mp4><b.mp4>"},
                           {"\r\n", "<a.mp4><b.mp4>"}});
    row("empty card", {{"\r\n", ""}});
    row("return first, then an entry", {{"\r\nZEPNA/a.mp4;\r\n", ""}});
    row("no end", {{"ZEPNA/a.mp4", "-"}, {";", "<a.mp4>"}, {"ZEPNA/b.mp4", "<a.mp4>-"}});
    row("entry without a folder takes the next one's name", {{"note;", "-"},
                                                             {"ZEPNA/b.mp4", "--"},
                                                             {";", "<b.mp4><b.mp4>"},
                                                             {"\r\n", "<b.mp4><b.mp4>"}});
    row("empty name", {{"ZEPNA/", "-"}, {";", "<>"}, {"\r\n", "<>"}});
    row("long name", {{"ZEPNA/abcdefghijklmnopqrstuvwxyz01234.mp4", "-"},
                      {";", "<abcdefghijklmnopqrstuvwxyz01234.mp4>"},
                      {"ZEPNA/n", "<abcdefghijklmnopqrstuvwxyz01234.mp4>-"},
                      {";", "<abcdefghijklmnopqrstuvwxyz01234.mp4><n>"},
                      {"\r\n", "<abcdefghijklmnopqrstuvwxyz01234.mp4><n>"}});
    row("bytes outside ASCII",
        {{"ZEPNA/\xE6\xB5\xB7\xFF\x80", "-"}, {";\r", "<\\xE6\\xB5\\xB7\\xFF\\x80>"}});
    row("zero byte ends it",
        {{"ZEPNA/a", "-"}, {";", "<a>"}, {std::string("\0ZEPNA/b;\r", 10), "<a>"}});
    row("return inside a name", {{"ZEPNA/a\rb", "-"}, {";\r", "<a\\rb>"}});
    row("return between entries", {{"ZEPNA/a", "-"}, {";\rZEPNA/b;\r", "<a>"}});
    row("line feed between entries",
        {{"ZEPNA/a", "-"}, {";", "<a>"}, {"\nZEPNA/b", "<a>-"}, {";\r", "<a><b>"}});
    row("semicolons only", {{";", "-"}, {";", "--"}, {";", "---"}});
    row("no list at all", {{"404 Not Found\r\n", "-"}});
}

void CardAnswers_EveryCutTest::listIsReadAsFarAsReceived()
{
    QFETCH(Pieces, pieces);
    checkEveryCut(pieces, namesIn);
}

void CardAnswers_EveryCutTest::countIsReadAsFarAsReceived_data()
{
    QTest::addColumn<Pieces>("pieces");
    const auto row = [](const char* name, const Pieces& pieces) { QTest::newRow(name) << pieces; };
    row("count", {{"var count=\"12\"", "none"}, {";\r\n", "<12>"}});
    row("first of two", {{"=\"1\"", "none"}, {";=\"2\";", "<1>"}});
    row("empty", {{"=\"\"", "none"}, {";", "<>"}});
    row("not closed", {{"=\"12\r\n", "none"}});
    row("closed by the next value", {{"=\"1;b=\"2\"", "none"}, {";", "<1;b=\"2>"}});
    row("end before the start", {{"\";12=\"3\"", "none"}, {";", "<3>"}});
    row("zero byte before the end", {{std::string("=\"12\0\";", 7), "none"}});
}

void CardAnswers_EveryCutTest::countIsReadAsFarAsReceived()
{
    QFETCH(Pieces, pieces);
    checkEveryCut(pieces, countOf);
}

BELUN_TEST(CardAnswers_EveryCutTest)
#include "CardAnswers_EveryCutTest.moc"
