#include "link/VersionText.h"

#include "tests/kit/TestMain.h"

class VersionTextTest : public QObject
{
    Q_OBJECT

private slots:
    void fieldShows_data();
    void fieldShows();
};

void VersionTextTest::fieldShows_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto hardwareType = [](const char* name, int type, const char* expected) {
        QTest::addRow("hardware type %s", name)
            << vehicle::hardwareTypeText(static_cast<char>(type)) << QString(expected);
    };
    hardwareType("7", 7, "v7");
    hardwareType("0", 0, "v0");
    hardwareType("largest", 127, "v127");
    hardwareType("80 is negative", -128, "v-128");
    hardwareType("ff is negative", -1, "v-1");
    const auto version = [](const char* name, int hundredths, const char* expected) {
        QTest::newRow(name) << vehicle::versionText(hundredths) << QString(expected);
    };
    version("whole", 300, "v3");
    version("600", 600, "v6");
    version("100", 100, "v1");
    version("one tenth", 10, "v0.1");
    version("one hundredth", 1, "v0.01");
    version("zero", 0, "v0");
    version("144", 144, "v1.44");
    version("1234", 1234, "v12.34");
    version("largest of a report", 32639, "v326.39");
    version("smallest of a report", -32896, "v-328.96");
    version("minus one hundredth", -1, "v-0.01");
    version("101", 101, "v1.01");
    version("negative", -257, "v-2.57");
    version("six digits", 123456, "v1234.56");
    version("a seventh digit is rounded away", 1234567, "v12345.7");
    version("single precision rounds this one up", 1234565, "v12345.7");
    version("a million", 100000000, "v1e+06");
}

void VersionTextTest::fieldShows()
{
    QFETCH(QString, text);
    QTEST(text, "expected");
}

BELUN_TEST(VersionTextTest)
#include "VersionTextTest.moc"
