#include "verify/Numbers.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

class NumbersTest : public QObject
{
    Q_OBJECT

private slots:
    void wholeTextIsTheNumber_data();
    void wholeTextIsTheNumber();
    void hexadecimalDigitsInEitherCase();
    void digitsAreGroupedByThree();
};

void NumbersTest::wholeTextIsTheNumber_data()
{
    const support::Rows<QByteArray, bool, quint64> row("text", "valid", "number");
    row("zero", "0", true, 0);
    row("leading zeros", "007", true, 7);
    row("beyond 32 bits", "4294967296", true, 4294967296);
    row("largest", "18446744073709551615", true, ~quint64(0));
    row("one more", "18446744073709551616", false, 0);
    row("forty digits", QByteArray(40, '1'), false, 0);
    row("empty", "", false, 0);
    row("sign", "-1", false, 0);
    row("plus sign", "+1", false, 0);
    row("space before", " 1", false, 0);
    row("letter after", "1k", false, 0);
    row("zero byte after", QByteArray("1\0", 2), false, 0);
}

void NumbersTest::wholeTextIsTheNumber()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, valid);
    QFETCH(quint64, number);
    const auto found = verify::decimalNumber(text.toStdString());
    QCOMPARE(found.has_value(), valid);
    QCOMPARE(quint64(found.value_or(0)), number);
}

void NumbersTest::hexadecimalDigitsInEitherCase()
{
    QCOMPARE(quint64(verify::hexadecimalNumber("1aF").value()), quint64(0x1AF));
    QCOMPARE(quint64(verify::hexadecimalNumber("ffffffffffffffff").value()), ~quint64(0));
    QVERIFY(!verify::hexadecimalNumber("10000000000000000"));
    QVERIFY(!verify::hexadecimalNumber("0x1"));
    QVERIFY(!verify::hexadecimalNumber(""));
}

void NumbersTest::digitsAreGroupedByThree()
{
    QCOMPARE(verify::grouped(0), std::string("0"));
    QCOMPARE(verify::grouped(999), std::string("999"));
    QCOMPARE(verify::grouped(1000), std::string("1,000"));
    QCOMPARE(verify::grouped(123456), std::string("123,456"));
    QCOMPARE(verify::grouped(~std::uint64_t(0)), std::string("18,446,744,073,709,551,615"));
}

BELUN_TEST(NumbersTest)

#include "NumbersTest.moc"
