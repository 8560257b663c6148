#include "posix/LeadingNumber.h"

#include "tests/kit/TestMain.h"

#include <climits>

#include <QByteArray>
#include <QObject>
#include <QTest>

class LeadingNumberTest : public QObject
{
    Q_OBJECT

private slots:
    void leadingDigitsAreTheNumber_data();
    void leadingDigitsAreTheNumber();
};

void LeadingNumberTest::leadingDigitsAreTheNumber_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("number");

    QTest::newRow("plain") << QByteArray("1572864") << 1572864;
    QTest::newRow("zero") << QByteArray("0") << 0;
    QTest::newRow("negative") << QByteArray("-2048") << -2048;
    QTest::newRow("plus sign") << QByteArray("+7") << 7;
    QTest::newRow("spaces before") << QByteArray("  42") << 42;
    QTest::newRow("trailing letters") << QByteArray("42 bytes") << 42;
    QTest::newRow("leading zeros") << QByteArray("0012") << 12;
    QTest::newRow("letters only") << QByteArray("abc") << 0;
    QTest::newRow("nothing") << QByteArray() << 0;
    QTest::newRow("largest int") << QByteArray("2147483647") << INT_MAX;
    QTest::newRow("smallest int") << QByteArray("-2147483648") << INT_MIN;
    QTest::newRow("three gigabytes keep their low 32 bits")
        << QByteArray("3221225472") << -1073741824;
    QTest::newRow("four gigabytes keep their low 32 bits") << QByteArray("4294967296") << 0;
    QTest::newRow("creation time keeps its low 32 bits")
        << QByteArray("20200131124502") << 899931414;
}

void LeadingNumberTest::leadingDigitsAreTheNumber()
{
    QFETCH(QByteArray, text);
    const int number = sys::leadingNumber(text.constData());
    QTEST(number, "number");
}

BELUN_TEST(LeadingNumberTest)
#include "LeadingNumberTest.moc"
