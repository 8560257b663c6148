// Integers as text in bases 2 to 36. For a negative integer or another base, nothing is written.
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
};

void NumberTextTest::numberIsWrittenInItsBase_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("radix");
    QTest::addColumn<QByteArray>("written");

    const auto writes = [](int value, int radix, const QByteArray& bytes) {
        QTest::newRow(qPrintable(QStringLiteral("%1 in base %2").arg(value).arg(radix)))
            << value << radix << bytes;
    };
    const auto row = [&writes](int value, int radix, const QByteArray& text) {
        writes(value, radix, text + '\0');
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
    row(INT_MAX, 10, "2147483647");
    row(INT_MAX, 16, "7fffffff");
    row(INT_MAX, 2, "1111111111111111111111111111111");
    row(INT_MAX, 36, "zik0zj");
    row(5, 3, "12");
    for (const int radix : {2, 10, 16, 36}) {
        row(0, radix, "");
    }

    // For a negative value or another base, the buffer stays unchanged.
    const auto unchanged = [&writes](int value, int radix) { writes(value, radix, ""); };
    unchanged(-5, 10);
    unchanged(-1, 2);
    unchanged(INT_MIN, 10);
    for (const int radix : {1, 37, 0, -10, INT_MAX}) {
        unchanged(5, radix);
    }
    unchanged(0, 1);
    unchanged(0, 37);
}

void NumberTextTest::numberIsWrittenInItsBase()
{
    QFETCH(int, value);
    QFETCH(int, radix);
    QFETCH(QByteArray, written);
    QByteArray buffer(64, '#');
    card::writeNumber(value, buffer.data(), radix);
    QCOMPARE(buffer, written.leftJustified(64, '#'));
}

BELUN_TEST(NumberTextTest)

#include "NumberTextTest.moc"
