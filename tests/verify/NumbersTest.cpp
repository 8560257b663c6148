#include "verify/Numbers.h"

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
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<quint64>("number");

    QTest::newRow("zero") << QByteArray("0") << true << quint64(0);
    QTest::newRow("leading zeros") << QByteArray("007") << true << quint64(7);
    QTest::newRow("beyond 32 bits") << QByteArray("4294967296") << true << quint64(4294967296);
    QTest::newRow("largest") << QByteArray("18446744073709551615") << true << ~quint64(0);
    QTest::newRow("one more") << QByteArray("18446744073709551616") << false << quint64(0);
    QTest::newRow("forty digits") << QByteArray(40, '1') << false << quint64(0);
    QTest::newRow("empty") << QByteArray("") << false << quint64(0);
    QTest::newRow("sign") << QByteArray("-1") << false << quint64(0);
    QTest::newRow("plus sign") << QByteArray("+1") << false << quint64(0);
    QTest::newRow("space before") << QByteArray(" 1") << false << quint64(0);
    QTest::newRow("letter after") << QByteArray("1k") << false << quint64(0);
    QTest::newRow("zero byte after") << QByteArray("1\0", 2) << false << quint64(0);
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
