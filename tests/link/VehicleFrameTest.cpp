#include "link/VehicleFrame.h"

#include "tests/kit/TestMain.h"
#include "tests/link/LinkConversations.h"
#include "tests/link/Modules.h"

#include <algorithm>
#include <string>

#include <QByteArray>
#include <QString>

using support::Conversation;
using support::Exchange;

namespace {

/// Returns the bytes of one receive, followed by zeros.
vehicle::Received receivedFrom(const std::string& bytes)
{
    vehicle::Received received{};
    std::copy(bytes.begin(), bytes.end(), received.begin());
    return received;
}

/// Returns what one receive means to the link of a module, in the words of the conversations.
QString meaningTo(const Module& module, const vehicle::Received& received)
{
    const bool isControl = module.name == "control";
    if (vehicle::isHeartbeat(received, static_cast<std::uint8_t>(module.startByte))) {
        return isControl ? "sends AA AF 04 01 01 5F, linked" : "sends AA AF 04 01 01 5F";
    }
    const auto report = vehicle::decodeVersionReport(received);
    if (!report || !isControl) {
        return "nothing";
    }
    return QStringLiteral("version %1 %2 %3 %4 %5")
        .arg(int{report->hardType})
        .arg(report->hardVer)
        .arg(report->softVer)
        .arg(report->protocolVer)
        .arg(report->bootVer);
}

} // namespace

class VehicleFrameTest : public QObject
{
    Q_OBJECT

private slots:
    void receiveThatEndsAnywhereMeansWhatIsWritten_data() { addConversations("", true); }
    void receiveThatEndsAnywhereMeansWhatIsWritten();
    void bothBytesOfAVersionAreSigned_data();
    void bothBytesOfAVersionAreSigned();
    void outgoingFrameIsExact_data();
    void outgoingFrameIsExact();
};

void VehicleFrameTest::receiveThatEndsAnywhereMeansWhatIsWritten()
{
    QFETCH(Conversation, conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    for (std::size_t count = 0; count <= std::min(bytes.size(), vehicle::receiveLimit); ++count) {
        const std::string received = bytes.substr(0, count);
        QCOMPARE(meaningTo(moduleOf(conversation), receivedFrom(received)),
                 QString::fromStdString(
                     support::closedBehind(exchange.pieces, exchange.closedAtStart, count)));
    }
}

void VehicleFrameTest::bothBytesOfAVersionAreSigned_data()
{
    QTest::addColumn<QByteArray>("pair");
    QTest::addColumn<int>("value");
    QTest::newRow("low byte 90 subtracts 112") << QByteArray("0190") << 144;
    QTest::newRow("low byte 7f adds 127") << QByteArray("017f") << 383;
    QTest::newRow("low byte 80 subtracts 128") << QByteArray("0180") << 128;
    QTest::newRow("low byte ff subtracts 1") << QByteArray("01ff") << 255;
    QTest::newRow("both bytes ff") << QByteArray("ffff") << -257;
    QTest::newRow("smallest") << QByteArray("8080") << -32896;
    QTest::newRow("high byte 80") << QByteArray("8000") << -32768;
    QTest::newRow("largest") << QByteArray("7f7f") << 32639;
    QTest::newRow("zero") << QByteArray("0000") << 0;
}

void VehicleFrameTest::bothBytesOfAVersionAreSigned()
{
    QFETCH(QByteArray, pair);
    QFETCH(int, value);
    const QByteArray bytes = QByteArray::fromHex("aaaf000900" + pair.repeated(4));
    QCOMPARE(meaningTo(controlModule(), receivedFrom(bytes.toStdString())),
             QStringLiteral("version 0 %1 %1 %1 %1").arg(value));
}

void VehicleFrameTest::outgoingFrameIsExact_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("data");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("heartbeat answer") << 4 << 1 << QByteArray("aaaf0401015f");
    QTest::newRow("zeros") << 0 << 0 << QByteArray("aaaf0001005a");
    QTest::newRow("checksum wraps to 0") << 0 << 0xA6 << QByteArray("aaaf0001a600");
    QTest::newRow("checksum wraps twice") << 0xFF << 0xFF << QByteArray("aaafff01ff58");
}

void VehicleFrameTest::outgoingFrameIsExact()
{
    QFETCH(int, type);
    QFETCH(int, data);
    const auto frame = vehicle::encodeFrame(static_cast<char>(type), static_cast<char>(data));
    QTEST(QByteArray(reinterpret_cast<const char*>(frame.data()), static_cast<int>(frame.size()))
              .toHex(),
          "bytes");
}

BELUN_TEST(VehicleFrameTest)
#include "VehicleFrameTest.moc"
