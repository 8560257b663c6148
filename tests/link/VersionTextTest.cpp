#include "link/VersionText.h"

#include "tests/kit/TestMain.h"

class VersionTextTest : public QObject
{
    Q_OBJECT

private slots:
    void hardwareTypeIsNotScaled_data();
    void hardwareTypeIsNotScaled();
    void versionIsShownInUnits_data();
    void versionIsShownInUnits();
};

void VersionTextTest::hardwareTypeIsNotScaled_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::newRow("7") << 7 << "v7";
    QTest::newRow("0") << 0 << "v0";
    QTest::newRow("largest") << 127 << "v127";
    QTest::newRow("80 is negative") << -128 << "v-128";
    QTest::newRow("ff is negative") << -1 << "v-1";
}

void VersionTextTest::hardwareTypeIsNotScaled()
{
    QFETCH(int, type);
    QFETCH(QString, text);
    QCOMPARE(vehicle::hardwareTypeText(static_cast<char>(type)), text);
}

void VersionTextTest::versionIsShownInUnits_data()
{
    QTest::addColumn<int>("hundredths");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole") << 300 << "v3";
    QTest::newRow("600") << 600 << "v6";
    QTest::newRow("100") << 100 << "v1";
    QTest::newRow("one tenth") << 10 << "v0.1";
    QTest::newRow("one hundredth") << 1 << "v0.01";
    QTest::newRow("zero") << 0 << "v0";
    QTest::newRow("144") << 144 << "v1.44";
    QTest::newRow("1234") << 1234 << "v12.34";
    QTest::newRow("largest of a report") << 32639 << "v326.39";
    QTest::newRow("smallest of a report") << -32896 << "v-328.96";
    QTest::newRow("minus one hundredth") << -1 << "v-0.01";
    QTest::newRow("101") << 101 << "v1.01";
    QTest::newRow("negative") << -257 << "v-2.57";
    QTest::newRow("six digits") << 123456 << "v1234.56";
    QTest::newRow("a seventh digit is rounded away") << 1234567 << "v12345.7";
    QTest::newRow("single precision rounds this one up") << 1234565 << "v12345.7";
    QTest::newRow("a million") << 100000000 << "v1e+06";
}

void VersionTextTest::versionIsShownInUnits()
{
    QFETCH(int, hundredths);
    QFETCH(QString, text);
    QCOMPARE(vehicle::versionText(hundredths), text);
}

BELUN_TEST(VersionTextTest)
#include "VersionTextTest.moc"
