// Date, size and duration as the table shows them.
#include "card/FileInfoText.h"

#include "tests/support/TestMain.h"

#include <climits>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTest>

class FileInfoTextTest : public QObject
{
    Q_OBJECT

private slots:
    void creationTimeShowsAsDateAndTime_data();
    void creationTimeShowsAsDateAndTime();
    void sizeShowsInWholeUnits_data();
    void sizeShowsInWholeUnits();
    void fieldStandsBeforeItsUnit_data();
    void fieldStandsBeforeItsUnit();
};

void FileInfoTextTest::creationTimeShowsAsDateAndTime_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("text");

    QTest::newRow("fourteen digits") << QByteArray("20200131124502") << "2020-01-31  12:45:02";
    QTest::newRow("more than fourteen")
        << QByteArray("20200131124502999") << "2020-01-31  12:45:02";
    QTest::newRow("31 characters")
        << QByteArray("2020013112450212345678901234567") << "2020-01-31  12:45:02";
    QTest::newRow("no range is checked") << QByteArray("99999999999999") << "9999-99-99  99:99:99";
    QTest::newRow("no digit is asked for")
        << QByteArray("abcdefghijklmn") << "abcd-ef-gh  ij:kl:mn";
    QTest::newRow("eight digits") << QByteArray("20200131") << "2020-01-31  ::";
    QTest::newRow("thirteen digits") << QByteArray("2020013112450") << "2020-01-31  12:45:0";
    QTest::newRow("four digits") << QByteArray("2020") << "2020--  ::";
    QTest::newRow("nothing") << QByteArray() << "--  ::";
}

void FileInfoTextTest::creationTimeShowsAsDateAndTime()
{
    QFETCH(QByteArray, field);
    const QString shown = card::dateText(field.constData());
    QTEST(shown, "text");
}

void FileInfoTextTest::sizeShowsInWholeUnits_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("unit");

    const auto row = [](int bytes, int count, const char* unit) {
        QTest::newRow(QByteArray::number(bytes).constData()) << bytes << count << unit;
    };
    row(0, 0, "KB");
    row(500, 0, "KB");
    row(1023, 0, "KB");
    row(1024, 1, "KB");
    row(2047, 1, "KB");
    row(2048, 2, "KB");
    row(1047552, 1023, "KB");
    row(1048575, 1023, "KB");
    row(1048576, 1, "MB");
    row(1572864, 1, "MB");
    row(2097151, 1, "MB");
    row(2097152, 2, "MB");
    row(INT_MAX, 2047, "MB");
    row(-1, 0, "KB");
    row(-1023, 0, "KB");
    row(-1024, -1, "KB");
    row(-1048576, -1024, "KB");
    row(INT_MIN, -2097152, "KB");
}

void FileInfoTextTest::sizeShowsInWholeUnits()
{
    QFETCH(int, bytes);
    const card::ShownSize shown = card::shownSize(bytes);
    QTEST(shown.count, "count");
    QTEST(QString::fromLatin1(shown.unit), "unit");
}

void FileInfoTextTest::fieldStandsBeforeItsUnit_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QByteArray>("unit");
    QTest::addColumn<QString>("text");

    QTest::newRow("seconds") << QByteArray("37") << QByteArray("s") << "37s";
    QTest::newRow("megabytes") << QByteArray("1") << QByteArray("MB") << "1MB";
    QTest::newRow("bare unit") << QByteArray() << QByteArray("KB") << "KB";
    QTest::newRow("no number") << QByteArray("a while") << QByteArray("s") << "a whiles";
    QTest::newRow("beyond ASCII") << QByteArray("深") << QByteArray("s") << QStringLiteral("深s");
}

void FileInfoTextTest::fieldStandsBeforeItsUnit()
{
    QFETCH(QByteArray, field);
    QFETCH(QByteArray, unit);
    const QString shown = card::withUnit(field.constData(), unit.constData());
    QTEST(shown, "text");
}

BELUN_TEST(FileInfoTextTest)

#include "FileInfoTextTest.moc"
