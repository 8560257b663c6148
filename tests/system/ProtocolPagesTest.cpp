// Checks the blocks of the protocol pages in docs/ against the program. The tests of the link
// threads play the conversations of the link page.
#include "app/MainWindow.h"
#include "card/CardAnswers.h"
#include "card/CardCommands.h"
#include "link/VehicleFrame.h"
#include "link/VersionText.h"
#include "tests/kit/MessageBoxWatcher.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowProbe.h"

#include <algorithm>
#include <vector>

#include <QDir>
#include <QFile>
#include <QList>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>

using support::Peer;
using support::ScriptedServer;

namespace {

constexpr quint16 modulePort = 5000;
constexpr quint16 cameraPort = 80;

/// A fenced block of a page.
struct Block
{
    QString tag;
    QStringList lines;
};

QList<Block> allBlocks(const QString& page)
{
    QList<Block> found;
    bool inside = false;
    for (const QString& line : page.split('\n')) {
        if (inside && line == "```") {
            inside = false;
        } else if (inside) {
            found.last().lines.append(line);
        } else if (line.startsWith("```")) {
            inside = true;
            found.append({line.mid(3), QStringList()});
        }
    }
    return found;
}

/// Returns the lines of each fenced block with that tag.
QList<QStringList> blocks(const QString& page, const QString& tag)
{
    QList<QStringList> found;
    for (const Block& block : allBlocks(page)) {
        if (block.tag == tag) {
            found.append(block.lines);
        }
    }
    return found;
}

/// Returns the columns of a line, which are separated by two or more spaces.
QStringList columns(const QString& line)
{
    return line.split(QRegularExpression(" {2,}"), Qt::SkipEmptyParts);
}

QByteArray bytes(const QString& hexadecimal)
{
    return QByteArray::fromHex(hexadecimal.toLatin1());
}

vehicle::Received receivedFrom(const QByteArray& bytes)
{
    vehicle::Received received{};
    std::copy(bytes.begin(), bytes.end(), received.begin());
    return received;
}

/// Returns how a link interprets a receive, in the page's words.
QString meaning(const vehicle::Received& received, std::uint8_t startByte, bool readsReports)
{
    if (vehicle::isHeartbeat(received, startByte)) {
        return "heartbeat";
    }
    return readsReports && vehicle::decodeVersionReport(received) ? "report" : "nothing";
}

/// One request of the camera page and its answer.
struct Exchange
{
    QByteArray request;
    QByteArray answer;

    QByteArray body() const { return answer.mid(answer.indexOf("\r\n\r\n") + 4); }
    QByteArray target() const { return request.left(request.indexOf(" HTTP/1.1")).mid(4); }
};

QList<Exchange> exchanges(const QString& page)
{
    QList<Exchange> all;
    for (const QStringList& block : blocks(page, "exchange")) {
        Exchange exchange;
        for (const QString& line : block) {
            QByteArray& side = line.startsWith('>') ? exchange.request : exchange.answer;
            side += line.mid(2).toUtf8() + "\r\n";
        }
        all.append(exchange);
    }
    return all;
}

QByteArray unescaped(QString text)
{
    return text.replace("\\r", "\r").replace("\\n", "\n").toUtf8();
}

QString rowText(const QTableWidget& table, int row)
{
    QStringList texts;
    for (int column = 0; column < table.columnCount(); ++column) {
        const QTableWidgetItem* item = table.item(row, column);
        texts.append(item == nullptr ? "-" : item->text());
    }
    return texts.join(", ");
}

QStringList tableText(const QTableWidget& table)
{
    QStringList rows;
    for (int row = 0; row < table.rowCount(); ++row) {
        rows.append(rowText(table, row));
    }
    return rows.isEmpty() ? QStringList("no rows") : rows;
}

/// Performs a user's steps in the window: "press TEXT" presses the button with that text, "select
/// row N" selects a row, and "message TEXT" checks the text of the message box that the preceding
/// step must show.
void act(const MainWindow& window, const QStringList& steps, support::MessageBoxWatcher& boxes)
{
    for (int i = 0; i < steps.size(); ++i) {
        const QString words = steps[i].section(' ', 1);
        if (steps[i].startsWith("press ")) {
            const auto buttons = window.findChildren<QPushButton*>();
            const auto button =
                std::find_if(buttons.begin(), buttons.end(),
                             [&words](const QPushButton* each) { return each->text() == words; });
            QVERIFY2(button != buttons.end(), qPrintable(steps[i]));
            const auto boxesBefore = boxes.boxes().size();
            const bool showsBox = steps.value(i + 1).startsWith("message ");
            if (showsBox) {
                boxes.answerNext(QMessageBox::Ok);
            }
            QTest::mouseClick(*button, Qt::LeftButton);
            QTRY_VERIFY((*button)->isEnabled()); // disabled during a download
            QCOMPARE(boxes.boxes().size(), boxesBefore + (showsBox ? 1 : 0));
        } else if (steps[i].startsWith("message ")) {
            QCOMPARE(boxes.boxes().last().text, words);
        } else {
            QVERIFY2(steps[i].startsWith("select row "), qPrintable(steps[i]));
            auto* table = window.findChild<QTableWidget*>();
            table->selectRow(words.section(' ', 1).toInt() - 1);
        }
    }
}

} // namespace

class ProtocolPagesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void linkPageVersionsAreDecodedAndShownAsStated();
    void linkPageReceivesAreInterpretedAsStated();

    void cameraConversationContainsEveryCommand();
    void cameraPageAnswersAreParsedAsStated_data();
    void cameraPageAnswersAreParsedAsStated();
    void cameraPageLengthsMatchTheBodies();
    void cameraConversationHappensAsWritten();

private:
    QString m_linkPage;
    QString m_cameraPage;
};

void ProtocolPagesTest::initTestCase()
{
    for (auto [page, path] : {std::pair(&m_linkPage, PROTOCOL_PAGES "/link-protocol.md"),
                              std::pair(&m_cameraPage, PROTOCOL_PAGES "/camera-protocol.md")}) {
        QFile file(path);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
        *page = QString::fromUtf8(file.readAll());
    }
}

// --- the link page
// ----------------------------------------------------------------------------------

void ProtocolPagesTest::linkPageVersionsAreDecodedAndShownAsStated()
{
    const QStringList lines = blocks(m_linkPage, "versions").value(0);
    QVERIFY(lines.size() > 5);
    for (const QString& line : lines) {
        const QStringList parts = columns(line);
        QCOMPARE(parts.size(), 3);
        const QByteArray value = bytes(parts[0]);
        const auto report = vehicle::decodeVersionReport(
            receivedFrom(bytes("AA AF 00 09 07") + value + value + value + value));
        QVERIFY2(report, qPrintable(line));
        for (const int version :
             {report->hardVer, report->softVer, report->protocolVer, report->bootVer}) {
            QCOMPARE(QString::number(version), parts[1]);
            QCOMPARE(vehicle::versionText(version), parts[2]);
        }
    }
}

void ProtocolPagesTest::linkPageReceivesAreInterpretedAsStated()
{
    const QStringList lines = blocks(m_linkPage, "receives").value(0);
    QVERIFY(lines.size() > 5);
    for (const QString& line : lines) {
        const QStringList parts = columns(line);
        QCOMPARE(parts.size(), 3);
        const vehicle::Received received = receivedFrom(bytes(parts[0]));
        const QString context = parts[0] + ": ";
        QCOMPARE(context + meaning(received, 0xAA, true), context + parts[1]);
        QCOMPARE(context + meaning(received, 0xBB, false), context + parts[2]);
    }
}

// --- the camera page
// --------------------------------------------------------------------------------

/// The page's conversation contains each command of the page's table, exactly as the table states
/// it: an argument is the count or a name of the conversation.
void ProtocolPagesTest::cameraConversationContainsEveryCommand()
{
    const QRegularExpression row("^\\| [a-z ]+\\| `(/cgi-bin[^`]*)` *\\|([^|]*)\\|",
                                 QRegularExpression::MultilineOption);
    const QStringList table = blocks(m_cameraPage, "rows").value(0);
    QStringList arguments{QString::number(table.size())};
    for (const QString& line : table) {
        arguments.append(line.section(", ", 0, 0));
    }
    QStringList onPage;
    QStringList inConversation;
    for (auto matches = row.globalMatch(m_cameraPage); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const QString path = match.captured(1);
        onPage.append(path);
        for (const Exchange& exchange : exchanges(m_cameraPage)) {
            const QString target = QString::fromUtf8(exchange.target());
            const QString argument = target.mid(path.size());
            const bool isStated = match.captured(2).trimmed().isEmpty()
                                      ? argument.isEmpty()
                                      : arguments.contains(argument);
            if (target.startsWith(path) && isStated) {
                inConversation.append(path);
                break;
            }
        }
    }
    QVERIFY(onPage.size() >= 6);
    QCOMPARE(inConversation, onPage);
}

void ProtocolPagesTest::cameraPageAnswersAreParsedAsStated_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("result");
    const QStringList lines = blocks(m_cameraPage, "answers").value(0);
    QVERIFY(lines.size() > 8);
    const QRegularExpression parts("^([a-z]+): (.*) -> ?(.*)$");
    for (const QString& line : lines) {
        const QRegularExpressionMatch match = parts.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        QTest::newRow(qPrintable(line))
            << match.captured(1) << match.captured(2) << match.captured(3);
    }
}

void ProtocolPagesTest::cameraPageAnswersAreParsedAsStated()
{
    QFETCH(QString, kind);
    QFETCH(QString, answer);
    QFETCH(QString, result);
    const QByteArray text = unescaped(answer);
    if (kind == "count") {
        const auto count = card::textBetween(text, card::countStart, card::valueEnd);
        QCOMPARE(count ? QString::fromStdString(std::string(*count)) : "no count", result);
    } else if (kind == "list") {
        QStringList read;
        card::FileListWalk walk(text);
        while (const auto entry = walk.next()) {
            read.append(QString::fromStdString(std::string(entry->name.value_or(""))));
        }
        QCOMPARE(read.join(", "), result);
    } else {
        QCOMPARE(kind, QString("details"));
        MainWindow window;
        const support::WindowProbe probe(window);
        auto& table = probe.child<QTableWidget>("tableWidgetFileInfo");
        table.insertRow(0);
        const char* details = text.constData();
        probe.call("ParseFileInfo", Q_ARG(const char*, details), Q_ARG(int, 0));
        QCOMPARE(rowText(table, 0), "-, " + result);
    }
}

void ProtocolPagesTest::cameraPageLengthsMatchTheBodies()
{
    for (const Exchange& exchange : exchanges(m_cameraPage)) {
        const QByteArray length =
            "\r\nContent-Length: " + QByteArray::number(exchange.body().size()) + "\r\n";
        QVERIFY2(exchange.answer.contains(length), exchange.answer.constData());
    }
}

void ProtocolPagesTest::cameraConversationHappensAsWritten()
{
    const QList<Exchange> expected = exchanges(m_cameraPage);
    QVERIFY(expected.size() >= 8);
    QVERIFY(blocks(m_cameraPage, "rows").size() >= 3);
    std::vector<ScriptedServer::Script> scripts;
    for (const Exchange& exchange : expected) {
        scripts.push_back([exchange](Peer& peer) {
            peer.receiveUntil("\r\n\r\n");
            peer.send(exchange.answer);
            peer.close();
        });
    }
    const ScriptedServer::Script silent = [](Peer& peer) { peer.holdOpen(); };
    ScriptedServer ground(silent, "192.168.1.148", modulePort);
    ScriptedServer control(silent, "192.168.1.149", modulePort);
    ScriptedServer camera(scripts, "192.168.1.120", cameraPort);
    support::MessageBoxWatcher boxes;

    MainWindow window;
    window.show();
    const auto& table = support::WindowProbe(window).child<QTableWidget>("tableWidgetFileInfo");
    for (const Block& block : allBlocks(m_cameraPage)) {
        if (block.tag == "user") {
            act(window, block.lines, boxes);
        } else if (block.tag == "rows") {
            QCOMPARE(tableText(table), block.lines);
        }
        if (QTest::currentTestFailed()) {
            return;
        }
    }
    for (const Exchange& exchange : expected) {
        if (exchange.target().startsWith("http://")) {
            const QString name = QString::fromUtf8(exchange.target().split('/').last());
            QFile recording(QDir::homePath() + "/Desktop/DCIM/" + name);
            QVERIFY2(recording.open(QIODevice::ReadOnly), qPrintable(recording.fileName()));
            QCOMPARE(recording.readAll(), exchange.body());
        }
    }

    QCOMPARE(camera.connectionCount(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(QString::fromUtf8(camera.received(i)), QString::fromUtf8(expected[i].request));
    }
}

BELUN_NETWORK_TEST(ProtocolPagesTest)
#include "ProtocolPagesTest.moc"
