#include "link/VehicleFrame.h"

#include "tests/kit/TestMain.h"

#include <algorithm>

#include <QByteArray>

namespace {

/// Returns the buffer after one receive of these bytes.
vehicle::Received receivedFrom(const QByteArray& bytes)
{
    vehicle::Received received{};
    std::copy(bytes.begin(), bytes.end(), received.begin());
    return received;
}

QByteArray bytesOf(const vehicle::OutgoingFrame& frame)
{
    return QByteArray(reinterpret_cast<const char*>(frame.data()), static_cast<int>(frame.size()));
}

} // namespace

class VehicleFrameTest : public QObject
{
    Q_OBJECT

private slots:
    void versionReportFillsEveryField();
    void bothBytesOfAVersionAreSigned_data();
    void bothBytesOfAVersionAreSigned();
    void hardwareTypeIsSigned();
    void secondByteAndLengthOfAReportAreNotExamined();
    void fieldsAfterTheEndOfAReceiveAreZero();
    void otherBytesAreNotAReport_data();
    void otherBytesAreNotAReport();
    void heartbeatIsRecognisedByStartByteAndTypeAlone_data();
    void heartbeatIsRecognisedByStartByteAndTypeAlone();
    void outgoingFrameIsExact_data();
    void outgoingFrameIsExact();
};

void VehicleFrameTest::versionReportFillsEveryField()
{
    const auto report = vehicle::decodeVersionReport(
        receivedFrom(QByteArray::fromHex("aaaf0009 07012c0258 0064000a")));
    QVERIFY(report.has_value());
    QCOMPARE(int{report->hardType}, 7);
    QCOMPARE(report->hardVer, 300);
    QCOMPARE(report->softVer, 600);
    QCOMPARE(report->protocolVer, 100);
    QCOMPARE(report->bootVer, 10);
}

void VehicleFrameTest::bothBytesOfAVersionAreSigned_data()
{
    QTest::addColumn<QByteArray>("pair");
    QTest::addColumn<int>("value");
    QTest::newRow("low byte 90 takes 112 away") << QByteArray::fromHex("0190") << 144;
    QTest::newRow("low byte 7f still adds") << QByteArray::fromHex("017f") << 383;
    QTest::newRow("low byte 80 takes 128 away") << QByteArray::fromHex("0180") << 128;
    QTest::newRow("low byte ff takes one away") << QByteArray::fromHex("01ff") << 255;
    QTest::newRow("both bytes ff") << QByteArray::fromHex("ffff") << -257;
    QTest::newRow("smallest") << QByteArray::fromHex("8080") << -32896;
    QTest::newRow("high byte 80") << QByteArray::fromHex("8000") << -32768;
    QTest::newRow("largest") << QByteArray::fromHex("7f7f") << 32639;
    QTest::newRow("zero") << QByteArray::fromHex("0000") << 0;
}

void VehicleFrameTest::bothBytesOfAVersionAreSigned()
{
    QFETCH(QByteArray, pair);
    QFETCH(int, value);
    for (int field = 0; field < 4; ++field) {
        QByteArray bytes = QByteArray::fromHex("aaaf0009000000000000000000");
        bytes.replace(5 + 2 * field, 2, pair);
        const auto report = vehicle::decodeVersionReport(receivedFrom(bytes));
        QVERIFY(report.has_value());
        QCOMPARE(report->hardVer, field == 0 ? value : 0);
        QCOMPARE(report->softVer, field == 1 ? value : 0);
        QCOMPARE(report->protocolVer, field == 2 ? value : 0);
        QCOMPARE(report->bootVer, field == 3 ? value : 0);
    }
}

void VehicleFrameTest::hardwareTypeIsSigned()
{
    QCOMPARE(int{vehicle::decodeVersionReport(receivedFrom(QByteArray::fromHex("aaaf0009ff")))
                     ->hardType},
             -1);
    QCOMPARE(int{vehicle::decodeVersionReport(receivedFrom(QByteArray::fromHex("aaaf000980")))
                     ->hardType},
             -128);
}

void VehicleFrameTest::secondByteAndLengthOfAReportAreNotExamined()
{
    const auto report = vehicle::decodeVersionReport(
        receivedFrom(QByteArray::fromHex("aa1200ee05000100020003 0004")));
    QVERIFY(report.has_value());
    QCOMPARE(int{report->hardType}, 5);
    QCOMPARE(report->bootVer, 4);
}

void VehicleFrameTest::fieldsAfterTheEndOfAReceiveAreZero()
{
    const auto report = vehicle::decodeVersionReport(receivedFrom(QByteArray::fromHex("aa")));
    QVERIFY(report.has_value());
    QCOMPARE(int{report->hardType}, 0);
    QCOMPARE(report->hardVer, 0);
    QCOMPARE(report->softVer, 0);
    QCOMPARE(report->protocolVer, 0);
    QCOMPARE(report->bootVer, 0);
}

void VehicleFrameTest::otherBytesAreNotAReport_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("ground module") << QByteArray::fromHex("bbaf000907012c02580064000a");
    QTest::newRow("heartbeat") << QByteArray::fromHex("aaaf0401015f");
    QTest::newRow("unknown type") << QByteArray::fromHex("aaaf0109");
    QTest::newRow("report after another byte") << QByteArray::fromHex("00aaaf000907012c");
    QTest::newRow("nothing but zeros") << QByteArray::fromHex("000000");
}

void VehicleFrameTest::otherBytesAreNotAReport()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!vehicle::decodeVersionReport(receivedFrom(bytes)).has_value());
}

void VehicleFrameTest::heartbeatIsRecognisedByStartByteAndTypeAlone_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("ofControl");
    QTest::addColumn<bool>("ofGround");
    QTest::newRow("control, whole") << QByteArray::fromHex("aaaf0401005f") << true << false;
    QTest::newRow("control, odd bytes") << QByteArray::fromHex("aa0004ffee") << true << false;
    QTest::newRow("control, three bytes") << QByteArray::fromHex("aa0004") << true << false;
    QTest::newRow("ground, whole") << QByteArray::fromHex("bbaf0401005f") << false << true;
    QTest::newRow("ground, odd bytes") << QByteArray::fromHex("bb7704") << false << true;
    QTest::newRow("version report") << QByteArray::fromHex("aaaf0009") << false << false;
    QTest::newRow("two bytes") << QByteArray::fromHex("aaaf") << false << false;
    QTest::newRow("other start byte") << QByteArray::fromHex("abaf04") << false << false;
    QTest::newRow("second frame") << QByteArray::fromHex("ccaf0401015faaaf04") << false << false;
}

void VehicleFrameTest::heartbeatIsRecognisedByStartByteAndTypeAlone()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, ofControl);
    QFETCH(bool, ofGround);
    QCOMPARE(vehicle::isHeartbeat(receivedFrom(bytes), 0xAA), ofControl);
    QCOMPARE(vehicle::isHeartbeat(receivedFrom(bytes), 0xBB), ofGround);
}

void VehicleFrameTest::outgoingFrameIsExact_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("data");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("heartbeat answer") << 4 << 1 << QByteArray::fromHex("aaaf0401015f");
    QTest::newRow("zeros") << 0 << 0 << QByteArray::fromHex("aaaf0001005a");
    QTest::newRow("checksum wraps at once") << 0 << 0xA6 << QByteArray::fromHex("aaaf0001a600");
    QTest::newRow("checksum wraps twice") << 0xFF << 0xFF << QByteArray::fromHex("aaafff01ff58");
}

void VehicleFrameTest::outgoingFrameIsExact()
{
    QFETCH(int, type);
    QFETCH(int, data);
    QFETCH(QByteArray, bytes);
    const auto frame = vehicle::encodeFrame(static_cast<char>(type), static_cast<char>(data));
    QCOMPARE(bytesOf(frame).toHex(), bytes.toHex());
}

BELUN_TEST(VehicleFrameTest)
#include "VehicleFrameTest.moc"
