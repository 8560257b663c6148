// Valid and invalid frames, split and closed at every byte. A frame is recognised only at the start
// of a receive, so the position of a split decides the result.
#include "link/ControlClientThread.h"
#include "link/GroundClientThread.h"
#include "tests/kit/Cuts.h"
#include "tests/kit/PacedSending.h"
#include "tests/kit/ScriptedServer.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/TestMain.h"
#include "tests/link/LinkRecorder.h"

#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include <QThread>
#include <QVector>

using support::Peer;
using support::ScriptedServer;
using support::Step;

namespace {

using Pieces = std::vector<std::string>;

/// Bytes and how a link thread interprets them.
struct Frames
{
    const char* name;
    QByteArray bytes;
    QString whole;
    QString byteByByte;
    QVector<Step> cutBehind;    ///< Indexed by the length of the first of two pieces.
    QVector<Step> closedBehind; ///< Indexed by the number of bytes before the end.
};

const QByteArray answer = QByteArray::fromHex("aaaf0401015f");
const QByteArray filler(94, 'x'); // fills up a hundred bytes, the most that one receive returns

// The signals of the control module's thread.
const QString linked = QStringLiteral("linked");
const QString zeros = QStringLiteral("version 0 0 0 0 0"); // if the type byte is missing
const QString report = QStringLiteral("version 7 300 600 100 10");

// The answers of the ground module's thread.
const QString once = QStringLiteral("aaaf0401015f");
const QString twice = QStringLiteral("aaaf0401015faaaf0401015f");

QVector<Frames> controlFrames()
{
    const QByteArray heartbeat = QByteArray::fromHex("aaaf04010000");
    const QByteArray version = QByteArray::fromHex("aaaf000907012c02580064000a");
    const QVector<Step> versionGrows{{1, zeros},
                                     {5, "version 7 0 0 0 0"},
                                     {6, "version 7 256 0 0 0"},
                                     {7, "version 7 300 0 0 0"},
                                     {8, "version 7 300 512 0 0"},
                                     {9, "version 7 300 600 0 0"},
                                     {11, "version 7 300 600 100 0"},
                                     {13, report}};
    const QVector<Step> bigBytesGrow{{1, zeros},
                                     {5, "version -1 0 0 0 0"},
                                     {6, "version -1 256 0 0 0"},
                                     {7, "version -1 144 0 0 0"},
                                     {8, "version -1 144 -32768 0 0"},
                                     {9, "version -1 144 -32769 0 0"},
                                     {10, "version -1 144 -32769 32512 0"},
                                     {11, "version -1 144 -32769 32384 0"},
                                     {12, "version -1 144 -32769 32384 -256"},
                                     {13, "version -1 144 -32769 32384 -257"}};
    return {
        {"heartbeat",
         heartbeat,
         linked,
         zeros,
         {{1, zeros}, {3, linked}},
         {{1, zeros}, {3, linked}}},
        {"heartbeat of start bytes",
         QByteArray::fromHex("aaaa04aaaaaa"),
         linked,
         zeros + ", " + zeros + ", " + zeros + ", " + zeros + ", " + zeros,
         {{1, zeros}, {3, linked}, {4, linked + ", " + zeros}},
         {{1, zeros}, {3, linked}}},
        {"version report", version, report, zeros, versionGrows, versionGrows},
        {"version report of bytes from 80 on", QByteArray::fromHex("aaaf0009ff019080ff7f80ffff"),
         "version -1 144 -32769 32384 -257", zeros, bigBytesGrow, bigBytesGrow},
        {"heartbeat, then a report",
         heartbeat + version,
         linked,
         zeros + ", " + zeros,
         {{1, zeros}, {3, linked}, {6, linked + ", " + report}, {7, linked}},
         {{1, zeros}, {3, linked}}},
        {"report, then a heartbeat", version + heartbeat, report, zeros + ", " + zeros,
         versionGrows.mid(0, 7) + QVector<Step>{{13, report + ", " + linked}, {14, report}},
         versionGrows},
        {"more than one receive takes",
         heartbeat + filler + heartbeat,
         linked + ", " + linked,
         zeros + ", " + zeros,
         {{1, zeros},
          {3, linked},
          {100, linked + ", " + linked},
          {101, linked + ", " + zeros},
          {103, linked + ", " + linked}},
         {{1, zeros}, {3, linked}, {101, linked + ", " + zeros}, {103, linked + ", " + linked}}},
        {"another byte, then a heartbeat", '\0' + heartbeat, "", zeros, {{1, linked}, {2, ""}}, {}},
        {"unknown type",
         QByteArray::fromHex("aaaf77010000"),
         "",
         zeros,
         {{1, zeros}, {3, ""}},
         {{1, zeros}, {3, ""}}},
        {"type from 80 on",
         QByteArray::fromHex("aaaf84010000"),
         "",
         zeros,
         {{1, zeros}, {3, ""}},
         {{1, zeros}, {3, ""}}},
        {"heartbeat of the ground module", QByteArray::fromHex("bbaf04010000"), "", "", {}, {}},
    };
}

QVector<Frames> groundFrames()
{
    const QByteArray heartbeat = QByteArray::fromHex("bbaf04010000");
    const QByteArray version = QByteArray::fromHex("aaaf000907012c02580064000a");
    return {
        {"heartbeat", heartbeat, once, "", {{3, once}}, {{3, once}}},
        {"heartbeat of start bytes",
         QByteArray::fromHex("bbbb04bbbbbb"),
         once,
         "",
         {{3, once}},
         {{3, once}}},
        {"two heartbeats",
         heartbeat + heartbeat,
         once,
         "",
         {{3, once}, {6, twice}, {7, once}},
         {{3, once}}},
        {"more than one receive takes",
         heartbeat + filler + heartbeat,
         twice,
         "",
         {{3, once}, {100, twice}, {101, once}, {103, twice}},
         {{3, once}, {103, twice}}},
        {"another byte, then a heartbeat", '\0' + heartbeat, "", "", {{1, once}, {2, ""}}, {}},
        {"report, then a heartbeat", version + heartbeat, "", "", {{13, once}, {14, ""}}, {}},
        {"unknown type", QByteArray::fromHex("bbaf77010000"), "", "", {}, {}},
        {"version report", QByteArray::fromHex("bbaf000907012c02580064000a"), "", "", {}, {}},
        {"heartbeat of the control module", QByteArray::fromHex("aaaf04010000"), "", "", {}, {}},
    };
}

/// One link thread, which receives one delivery after the other, each on its own connection.
template <class Thread>
class Receiver
{
public:
    explicit Receiver(std::vector<Pieces> deliveries)
        : m_deliveries(std::move(deliveries)), m_server([this](Peer& peer) { deliver(peer); })
    {
        std::strcpy(thread.serverIP, "127.0.0.1");
        thread.serverPort = m_server.port();
    }

    /// Returns the answers, one text per delivery, or none if the deliveries do not end in time.
    QStringList answers()
    {
        thread.start(QThread::InheritPriority);
        QStringList all;
        if (m_server.waitForScripts(count(), 20000)) {
            for (int number = 0; number < count(); ++number) {
                all.append(QString::fromLatin1(m_server.received(number).toHex()));
            }
        }
        return all;
    }

    Thread thread{nullptr};

private:
    int count() const { return static_cast<int>(m_deliveries.size()); }

    void deliver(Peer& peer)
    {
        m_connections = peer.number() + 1;
        if (peer.number() == count()) {
            peer.holdOpen();
            return;
        }
        support::sendPaced(peer, m_deliveries[static_cast<std::size_t>(peer.number())],
                           m_server.port(), [this] { return m_watch.isAsleep(); });
        peer.halfClose();
        // All answers are sent before the next connection is made.
        peer.waitUntil([this, &peer] { return m_connections > peer.number() + 1; });
        peer.close();
    }

    support::SleepWatch m_watch{thread};
    const std::vector<Pieces> m_deliveries;
    std::atomic<int> m_connections{0};
    ScriptedServer m_server;
};

/// Returns one text per delivery: the control thread's signals up to the loss of the link, or its
/// answers if they do not match the signals. Returns no texts if a loss is missing.
QStringList toldBy(Receiver<ControlClientThread>& receiver)
{
    LinkRecorder recorder;
    QObject::connect(&receiver.thread, SIGNAL(VersionInfo(char,int,int,int,int)), &recorder,
                                              SLOT(VersionInfo(char,int,int,int,int)));
    QObject::connect(&receiver.thread, SIGNAL(updateLinkedFlag(bool)), &recorder,
                                              SLOT(updateLinkedFlag(bool)));
    const QStringList answers = receiver.answers();
    QStringList all;
    if (!QTest::qWaitFor([&] { return recorder.events.count("lost") >= answers.size(); })) {
        return all;
    }
    QStringList told;
    for (const QString& event : recorder.events) {
        if (event != QLatin1String("lost")) {
            told.append(event);
            continue;
        }
        const QString expected =
            QString::fromLatin1(answer.toHex()).repeated(static_cast<int>(told.count(linked)));
        all.append(answers.value(all.size()) == expected ? told.join(QStringLiteral(", "))
                                                         : "answered " + answers.value(all.size()));
        told.clear();
    }
    return all;
}

QStringList toldBy(Receiver<GroundClientThread>& receiver)
{
    return receiver.answers();
}

template <class Thread>
void compare(const std::vector<Pieces>& deliveries, const QStringList& expected)
{
    QStringList told;
    {
        Receiver<Thread> receiver(deliveries);
        told = toldBy(receiver);
    }
    QCOMPARE(told.size(), expected.size());
    for (int number = 0; number < expected.size(); ++number) {
        const QStringList sizes = [&] {
            QStringList all;
            for (const std::string& piece : deliveries[static_cast<std::size_t>(number)]) {
                all.append(QString::number(piece.size()));
            }
            return all;
        }();
        QVERIFY2(told[number] == expected[number],
                 qPrintable(QStringLiteral("pieces of %1 bytes: \"%2\" instead of \"%3\"")
                                .arg(sizes.join(QStringLiteral(" and ")), told[number],
                                     expected[number])));
    }
}

template <class Thread>
void checkEveryCut(const Frames& frames)
{
    const std::string bytes = frames.bytes.toStdString();
    std::vector<Pieces> deliveries{{bytes}, support::singleBytes(bytes)};
    QStringList expected{frames.whole, frames.byteByByte};
    for (int position = 1; position < frames.bytes.size(); ++position) {
        deliveries.push_back(support::cut(bytes, {static_cast<std::size_t>(position)}));
        expected.append(support::outcomeAt(frames.cutBehind, static_cast<std::size_t>(position)));
    }
    compare<Thread>(deliveries, expected);
}

template <class Thread>
void checkEveryEnd(const Frames& frames)
{
    const std::string bytes = frames.bytes.toStdString();
    std::vector<Pieces> deliveries{Pieces{}};
    QStringList expected{QString()};
    for (int count = 1; count <= frames.bytes.size(); ++count) {
        deliveries.push_back({bytes.substr(0, static_cast<std::size_t>(count))});
        expected.append(support::outcomeAt(frames.closedBehind, static_cast<std::size_t>(count)));
    }
    compare<Thread>(deliveries, expected);
}

void addRows(const QVector<Frames>& all)
{
    QTest::addColumn<int>("number");
    for (int number = 0; number < all.size(); ++number) {
        QTest::newRow(all[number].name) << number;
    }
}

} // namespace

class VehicleFrame_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void controlBytesWholeByteByByteAndCutAnywhere_data() { addRows(controlFrames()); }
    void controlBytesWholeByteByByteAndCutAnywhere();
    void controlBytesClosedAnywhere_data() { addRows(controlFrames()); }
    void controlBytesClosedAnywhere();
    void groundBytesWholeByteByByteAndCutAnywhere_data() { addRows(groundFrames()); }
    void groundBytesWholeByteByByteAndCutAnywhere();
    void groundBytesClosedAnywhere_data() { addRows(groundFrames()); }
    void groundBytesClosedAnywhere();
};

void VehicleFrame_EveryCutTest::controlBytesWholeByteByByteAndCutAnywhere()
{
    QFETCH(int, number);
    checkEveryCut<ControlClientThread>(controlFrames()[number]);
}

void VehicleFrame_EveryCutTest::controlBytesClosedAnywhere()
{
    QFETCH(int, number);
    checkEveryEnd<ControlClientThread>(controlFrames()[number]);
}

void VehicleFrame_EveryCutTest::groundBytesWholeByteByByteAndCutAnywhere()
{
    QFETCH(int, number);
    checkEveryCut<GroundClientThread>(groundFrames()[number]);
}

void VehicleFrame_EveryCutTest::groundBytesClosedAnywhere()
{
    QFETCH(int, number);
    checkEveryEnd<GroundClientThread>(groundFrames()[number]);
}

BELUN_TEST(VehicleFrame_EveryCutTest)
#include "VehicleFrame_EveryCutTest.moc"
