// Integers as text in any base.
#include "card/NumberText.h"

#include "tests/kit/TestMain.h"

#include <climits>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTest>

class NumberTextTest : public QObject
{
    Q_OBJECT

private slots:
    void numberIsWrittenInItsBase_data();
    void numberIsWrittenInItsBase();
    void zeroIsTheEmptyText();
    void negativeValueAndOtherBasesLeaveTheBufferAsItWas_data();
    void negativeValueAndOtherBasesLeaveTheBufferAsItWas();
    void nothingIsWrittenAfterTheTerminator_data();
    void nothingIsWrittenAfterTheTerminator();

private:
    /// Returns a buffer of 64 '#' after writeNumber() was called for it.
    static QByteArray written(int value, int radix)
    {
        QByteArray buffer(64, '#');
        card::writeNumber(value, buffer.data(), radix);
        return buffer;
    }
};

void NumberTextTest::numberIsWrittenInItsBase_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("radix");
    QTest::addColumn<QByteArray>("text");

    const auto row = [](int value, int radix, const char* text) {
        QTest::newRow(qPrintable(QStringLiteral("%1 in base %2").arg(value).arg(radix)))
            << value << radix << QByteArray(text);
    };
    row(255, 16, "ff");
    row(10, 2, "1010");
    row(35, 36, "z");
    row(36, 36, "10");
    row(1, 2, "1");
    row(1, 10, "1");
    row(9, 10, "9");
    row(10, 10, "10");
    row(1536, 10, "1536");
    row(100, 10, "100");
    row(8, 8, "10");
    row(1295, 36, "zz");
    row(48879, 16, "beef");
    row(2147483647, 10, "2147483647");
    row(2147483647, 16, "7fffffff");
    row(2147483647, 2, "1111111111111111111111111111111");
    row(2147483647, 36, "zik0zj");
    row(5, 3, "12");
}

void NumberTextTest::numberIsWrittenInItsBase()
{
    QFETCH(int, value);
    QFETCH(int, radix);
    const QByteArray buffer = written(value, radix);
    QTEST(QByteArray(buffer.constData()), "text");
}

void NumberTextTest::zeroIsTheEmptyText()
{
    for (const int radix : {2, 10, 16, 36}) {
        QCOMPARE(written(0, radix), QByteArray(1, '\0') + QByteArray(63, '#'));
    }
}

void NumberTextTest::negativeValueAndOtherBasesLeaveTheBufferAsItWas_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("radix");

    QTest::newRow("-5 in base 10") << -5 << 10;
    QTest::newRow("-1 in base 2") << -1 << 2;
    QTest::newRow("smallest int") << INT_MIN << 10;
    QTest::newRow("base 1") << 5 << 1;
    QTest::newRow("base 37") << 5 << 37;
    QTest::newRow("base 0") << 5 << 0;
    QTest::newRow("base -10") << 5 << -10;
    QTest::newRow("largest base") << 5 << INT_MAX;
    QTest::newRow("zero in base 1") << 0 << 1;
    QTest::newRow("zero in base 37") << 0 << 37;
}

void NumberTextTest::negativeValueAndOtherBasesLeaveTheBufferAsItWas()
{
    QFETCH(int, value);
    QFETCH(int, radix);
    QCOMPARE(written(value, radix), QByteArray(64, '#'));
}

void NumberTextTest::nothingIsWrittenAfterTheTerminator_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("radix");
    QTest::addColumn<int>("length");

    QTest::newRow("one digit") << 7 << 10 << 1;
    QTest::newRow("three digits") << 255 << 10 << 3;
    QTest::newRow("31 digits, the longest") << INT_MAX << 2 << 31;
}

void NumberTextTest::nothingIsWrittenAfterTheTerminator()
{
    QFETCH(int, value);
    QFETCH(int, radix);
    QFETCH(int, length);
    const QByteArray buffer = written(value, radix);
    QCOMPARE(buffer.at(length), '\0');
    QCOMPARE(buffer.mid(length + 1), QByteArray(63 - length, '#'));
}

BELUN_TEST(NumberTextTest)

#include "NumberTextTest.moc"
