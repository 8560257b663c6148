#include "link/VehicleFrame.h"

#include "tests/kit/TestMain.h"

#include <algorithm>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace {

/// Describes what the bytes of one receive are: "heartbeat of control", "heartbeat of ground",
/// "report 7 300 600 100 10" or nothing.
QString meaningOf(const QByteArray& bytes)
{
    vehicle::Received received{};
    std::copy(bytes.begin(), bytes.end(), received.begin());
    QStringList all;
    if (vehicle::isHeartbeat(received, 0xAA)) {
        all.append("heartbeat of control");
    }
    if (vehicle::isHeartbeat(received, 0xBB)) {
        all.append("heartbeat of ground");
    }
    if (const auto report = vehicle::decodeVersionReport(received)) {
        all.append(QStringLiteral("report %1 %2 %3 %4 %5")
                       .arg(int{report->hardType})
                       .arg(report->hardVer)
                       .arg(report->softVer)
                       .arg(report->protocolVer)
                       .arg(report->bootVer));
    }
    return all.join(", ");
}

} // namespace

class VehicleFrameTest : public QObject
{
    Q_OBJECT

private slots:
    void receiveMeans_data();
    void receiveMeans();
    void bothBytesOfAVersionAreSigned_data();
    void bothBytesOfAVersionAreSigned();
    void outgoingFrameIsExact_data();
    void outgoingFrameIsExact();
};

void VehicleFrameTest::receiveMeans_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("meaning");
    const auto row = [](const char* name, const char* bytes, const char* meaning) {
        QTest::newRow(name) << QByteArray::fromHex(bytes) << QString(meaning);
    };
    row("version report", "aaaf000907012c02580064000a", "report 7 300 600 100 10");
    row("hardware type ff", "aaaf0009ff", "report -1 0 0 0 0");
    row("hardware type 80", "aaaf000980", "report -128 0 0 0 0");
    row("other second byte and length", "aa1200ee050001000200030004", "report 5 1 2 3 4");
    row("missing bytes are zero", "aa", "report 0 0 0 0 0");
    row("report of the ground module", "bbaf000907012c02580064000a", "");
    row("report after another byte", "00aaaf000907012c", "");
    row("nothing but zeros", "000000", "");
    row("unknown type", "aaaf0109", "");
    row("heartbeat of the control module", "aaaf0401005f", "heartbeat of control");
    row("control heartbeat of odd bytes", "aa0004ffee", "heartbeat of control");
    row("control heartbeat of three bytes", "aa0004", "heartbeat of control");
    row("heartbeat of the ground module", "bbaf0401005f", "heartbeat of ground");
    row("ground heartbeat of three odd bytes", "bb7704", "heartbeat of ground");
    row("two bytes", "bbaf", "");
    row("other start byte", "abaf04", "");
    row("second frame", "ccaf0401015faaaf04", "");
}

void VehicleFrameTest::receiveMeans()
{
    QFETCH(QByteArray, bytes);
    QTEST(meaningOf(bytes), "meaning");
}

void VehicleFrameTest::bothBytesOfAVersionAreSigned_data()
{
    QTest::addColumn<QByteArray>("pair");
    QTest::addColumn<int>("value");
    QTest::newRow("low byte 90 takes 112 away") << QByteArray("0190") << 144;
    QTest::newRow("low byte 7f still adds") << QByteArray("017f") << 383;
    QTest::newRow("low byte 80 takes 128 away") << QByteArray("0180") << 128;
    QTest::newRow("low byte ff takes one away") << QByteArray("01ff") << 255;
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
    QCOMPARE(meaningOf(QByteArray::fromHex("aaaf000900" + pair.repeated(4))),
             QStringLiteral("report 0 %1 %1 %1 %1").arg(value));
}

void VehicleFrameTest::outgoingFrameIsExact_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("data");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("heartbeat answer") << 4 << 1 << QByteArray("aaaf0401015f");
    QTest::newRow("zeros") << 0 << 0 << QByteArray("aaaf0001005a");
    QTest::newRow("checksum wraps at once") << 0 << 0xA6 << QByteArray("aaaf0001a600");
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
