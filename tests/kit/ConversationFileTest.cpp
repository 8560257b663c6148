#include "tests/kit/ConversationFile.h"

#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// Describes what was read, or returns the error.
std::string description(const support::Conversations& conversations)
{
    std::string text = conversations.error;
    for (const support::Conversation& conversation : conversations.all) {
        text += conversation.name + "\n";
        text += conversation.mayEndAnywhere() ? "may end anywhere\n" : "";
        text += conversation.hasPauses() ? "has pauses\n" : "";
        for (const support::Exchange& exchange : conversation.exchanges) {
            text += "call " + exchange.call + " > " + exchange.closedAtStart + "\n";
            for (const support::Piece& piece : exchange.pieces) {
                text += "bytes " + support::printable(piece.bytes) + " > " + piece.closed + "\n";
            }
            for (const std::size_t pause : exchange.pauses) {
                text += "pause " + std::to_string(pause) + "\n";
            }
            text += exchange.peerCloses ? "close\n" : "";
            text += exchange.peerResets ? "reset\n" : "";
            text += "result " + exchange.result + " > " + exchange.unread + "\n";
        }
    }
    return text;
}

/// Describes a file with that text, without its folder.
QByteArray descriptionOf(const QString& name, const QByteArray& text)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        return file.errorString().toUtf8();
    }
    file.close();
    const std::string path = file.fileName().toStdString();
    return QByteArray::fromStdString(description(support::readConversations(path)))
        .replace(folder.path().toUtf8() + "/", "");
}

} // namespace

class ConversationFileTest : public QObject
{
    Q_OBJECT

private slots:
    void fileIsReadOrItsErrorNamesTheLine_data();
    void fileIsReadOrItsErrorNamesTheLine();
    void everyFileOfAFolderIsRead();
    void onlyTheBlocksOfAPageAreRead();
    void folderWithoutAConversationIsAnError();
};

void ConversationFileTest::fileIsReadOrItsErrorNamesTheLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char* name, const char* text, const char* expected) {
        QTest::newRow(name) << QByteArray(text) << QByteArray(expected);
    };
    row("every kind of line",
        "# A remark.\n"
        "\n"
        "# A remark on the first.\n"
        "# first: of two\n"
        "client get /p given last | false last\n"
        "< \\sa b           | false \"a = b\"\n"
        "< c\\r\\n   ! pause | false \"b\"\n"
        "< d       ! close = true left=2 \"x | y\" unread \"d\"\n"
        "\n"
        "# second\n"
        "client readBody\n"
        "< ! close\n"
        "= false\n"
        "client readBody\n"
        "< ! reset = false\n",
        "x: first: of two\n"
        "may end anywhere\n"
        "has pauses\n"
        "call get /p given last > false last\n"
        "bytes  a b > false \"a = b\"\n"
        "bytes c\\r\\n > false \"b\"\n"
        "bytes d > true left=2 \"x | y\"\n"
        "pause 7\n"
        "close\n"
        "result true left=2 \"x | y\" > \"d\"\n"
        "x: second\n"
        "call readBody > \n"
        "bytes  > false\n"
        "close\n"
        "result false > \n"
        "call readBody > \n"
        "bytes  > false\n"
        "reset\n"
        "result false > \n");
    row("the end of another conversation",
        "# first\n"
        "client readBody | false\n"
        "< 5    | false left=5\n"
        "< hell | false left=1\n"
        "< o    = true unread \"x\"\n"
        "\n"
        "# second\n"
        "client readBody | false\n"
        "< 0    | false last\n"
        "< 5;   | false left=5\n"
        "then as in: first\n",
        "x: first\n"
        "may end anywhere\n"
        "call readBody > false\n"
        "bytes 5 > false left=5\n"
        "bytes hell > false left=1\n"
        "bytes o > true\n"
        "result true > \"x\"\n"
        "x: second\n"
        "may end anywhere\n"
        "call readBody > false\n"
        "bytes 0 > false last\n"
        "bytes 5; > false left=5\n"
        "bytes hell > false left=1\n"
        "bytes o > true\n"
        "result true > \"x\"\n");
    row("two calls", "# name\nclient get /1\n< a = true\nclient get /2\n< b = false\n",
        "x: name\n"
        "call get /1 > \nbytes a > true\nresult true > \n"
        "call get /2 > \nbytes b > false\nresult false > \n");
    row("a call that goes on", "# name\nclient get /\n< a = true\n< b = false\n",
        "x: name\n"
        "call get / > \nbytes a > true\nresult true > \n"
        "call  > \nbytes b > false\nresult false > \n");
    row("escapes", "# name\nclient get /\n< a\\r\\n\\\\\\s\\x00\\x80\\xFF1\\(3 x) = true\n",
        "x: name\ncall get / > \nbytes a\\r\\n\\ \\x00\\x80\\xFF1xxx > true\nresult true > \n");

    row("reset", "# name\nclient download a.mp4\n< ! pause\n< ab ! reset = \"\"\n",
        "x: name\nhas pauses\ncall download a.mp4 > \nbytes  > \nbytes ab > \"\"\npause 0\nreset\n"
        "result \"\" > \n");

    row("no comment above", "\nclient get /\n", "x.txt:2: no name in a comment right above");
    row("empty line below the comment", "# name\n\nclient get /\n",
        "x.txt:3: no name in a comment right above");
    row("bytes without a call", "# name\n< a\n", "x.txt:2: no client line above");
    row("bytes below an empty line", "# name\nclient get /\n< a = true\n\n< b = true\n",
        "x.txt:5: no client line above");
    row("second result", "# name\nclient get /\n< a\n= true\n= true\n",
        "x.txt:5: no client line above");
    row("no result before an empty line", "# name\nclient get /\n< a\n\n",
        "x.txt:4: the result is missing above");
    row("no result before the end", "# name\nclient get /\n< a\n",
        "x.txt:4: the result is missing above");
    row("no result before the next call", "# name\nclient get /\n< a\nclient get /\n",
        "x.txt:4: the result is missing above");
    row("unknown escape", "# name\nclient get /\n< \\t\n", "x.txt:3: unknown escape");
    row("backslash at the end", "# name\nclient get /\n< a\\\n", "x.txt:3: unknown escape");
    row("unknown action", "# name\nclient get /\n< a ! closed\n", "x.txt:3: unknown action");
    row("no bytes", "# name\nclient get /\n= true\n", "x.txt:3: no < above, or | in the last one");
    row("result of a close in the last line", "# name\nclient get / | false\n< a | false\n= true\n",
        "x.txt:4: no < above, or | in the last one");
    row("no result of a close", "# name\nclient get / | false\n< a\n< b\n",
        "x.txt:4: the line above must state a result after |, as client does, or none");
    row("no result of a close at the start", "# name\nclient get /\n< a | false\n< b\n",
        "x.txt:4: the line above must state a result after |, as client does, or none");
    row("close in the second call", "# name\nclient get /\n< a = true\nclient get / | false\n",
        "x.txt:4: | in a conversation of several calls");
    row("close in the first of two calls", "# name\nclient get / | x\n< a = true\nclient get /\n",
        "x.txt:4: | in a conversation of several calls");
    row("the end of an unknown conversation", "# name\nclient get /\n< a\nthen as in: other\n",
        "x.txt:4: no such conversation above");
    row("the end of the same conversation", "# name\nclient get /\n< a\nthen as in: name\n",
        "x.txt:4: no such conversation above");
    row("unknown line", "server\n", "x.txt:1: not understood; lines begin with # client < = then");
    row("space before a line", " # name\n",
        "x.txt:1: not understood; lines begin with # client < = then");
}

void ConversationFileTest::fileIsReadOrItsErrorNamesTheLine()
{
    QFETCH(QByteArray, text);
    QTEST(descriptionOf("x.txt", text), "expected");
}

void ConversationFileTest::everyFileOfAFolderIsRead()
{
    const QTemporaryDir folder;
    for (const char* name : {"b.txt", "a.txt"}) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("# name\nclient get /\n< a = true\n");
    }
    const support::Conversations read = support::readConversations(folder.path().toStdString());
    QCOMPARE(read.error, std::string());
    QCOMPARE(read.all.size(), std::size_t{2});
    QCOMPARE(read.all[0].name, std::string("a: name"));
    QCOMPARE(read.all[1].name, std::string("b: name"));
}

void ConversationFileTest::onlyTheBlocksOfAPageAreRead()
{
    QCOMPARE(descriptionOf("page.md",
                           "# Title\n\n```conversation\n# name\nclient get /\n< a = true\n"
                           "```\n< text\n\n```sh\n= other\n```\n"),
             QByteArray("page: name\ncall get / > \nbytes a > true\nresult true > \n"));
    QCOMPARE(descriptionOf("page.md", "Text.\n```conversation\n# name\nclient get /\n```\n"),
             QByteArray("page.md:5: the result is missing above"));
}

void ConversationFileTest::folderWithoutAConversationIsAnError()
{
    QCOMPARE(support::readConversations("/nowhere").error,
             std::string("/nowhere: no conversation"));
}

BELUN_TEST(ConversationFileTest)
#include "ConversationFileTest.moc"
