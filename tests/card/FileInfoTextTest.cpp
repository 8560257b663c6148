// The values of a recording's details. CardAnswers_EveryCutTest plays whole answers.
#include "card/FileInfoText.h"

#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTest>

using Reading = card::ExactSize::Reading;
Q_DECLARE_METATYPE(Reading)

class FileInfoTextTest : public QObject
{
    Q_OBJECT

private slots:
    void valueIsShownAsText_data();
    void valueIsShownAsText();
    void exactSizeIsChecked_data();
    void exactSizeIsChecked();
    void answerWithoutASizeHasNoExactSize_data();
    void answerWithoutASizeHasNoExactSize();
};

void FileInfoTextTest::valueIsShownAsText_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("text");

    const auto row = [](const char* key, const char* value, const char* text) {
        QTest::addRow("%s \"%s\"", key, value)
            << QByteArray(key) << QByteArray(value) << QString::fromUtf8(text);
    };
    row("create", "20200131124502", "2020-01-31  12:45:02");
    row("create", "20200131124502999", "2020-01-31  12:45:02");
    row("create", "2020013112450212345678901234567", "2020-01-31  12:45:02");
    row("create", "99999999999999", "9999-99-99  99:99:99");
    row("create", "abcdefghijklmn", "abcd-ef-gh  ij:kl:mn");
    row("create", "2020013112450", "2020-01-31  12:45:0");
    row("create", "20200131", "2020-01-31  ::");
    row("create", "202001", "2020-01-  ::");
    row("create", "2020", "2020--  ::");
    row("create", "", "--  ::");

    row("size", "0", "KB");
    row("size", "500", "KB");
    row("size", "1023", "KB");
    row("size", "1024", "1KB");
    row("size", "2047", "1KB");
    row("size", "1048575", "1023KB");
    row("size", "1048576", "1MB");
    row("size", "1572864", "1MB");
    row("size", "67108864", "64MB");
    row("size", "2147483647", "2047MB");
    row("size", "2147483648", "2147483648KB"); // negative in 32 bits, shown as received
    row("size", "3221225472", "3221225472KB");
    row("size", "-1", "KB");
    row("size", "-1023", "KB");
    row("size", "-1024", "-1024KB");
    row("size", "-2048", "-2048KB");
    row("size", "-2147483648", "-2147483648KB");
    row("size", "-5000", "-5000KB");
    row("size", "-5000x", "-5000xKB");
    row("size", "12 bytes", "KB");
    row("size", "2048 bytes", "2KB");
    row("size", "large", "KB");

    row("time", "37", "37s");
    row("time", "", "s");
    row("time", "a while", "a whiles");
    row("time", "深", "深s");
}

void FileInfoTextTest::valueIsShownAsText()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, value);
    QMap<QByteArray, QByteArray> values{
        {"create", "20200131124502"}, {"size", "2047"}, {"time", "37"}};
    values[key] = value;
    const card::FileInfoText texts =
        card::readFileInfo("create=\"" + values["create"] + "\";size=\"" + values["size"] +
                           "\";time=\"" + values["time"] + "\";");
    const QString& shown = key == "create" ? texts.date
                           : key == "size" ? texts.size
                                           : texts.duration;
    QTEST(shown, "text");
}

void FileInfoTextTest::exactSizeIsChecked_data()
{
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<Reading>("reading");
    QTest::addColumn<qint64>("bytes");

    const auto row = [](const QByteArray& size, Reading reading, qint64 bytes) {
        QTest::newRow(size.isEmpty() ? "nothing" : size.constData()) << size << reading << bytes;
    };
    row("0", Reading::Known, 0);
    row("1572864", Reading::Known, 1572864);
    row("0012", Reading::Known, 12);
    row("2147483648", Reading::Known, 2147483648);
    row("4294967296", Reading::Known, 4294967296);
    row("9223372036854775807", Reading::Known, 9223372036854775807);
    row("9223372036854775808", Reading::OutOfRange, 0);
    row("18446744073709551616", Reading::OutOfRange, 0);
    row(QByteArray(40, '7'), Reading::OutOfRange, 0);
    row("", Reading::NotANumber, 0);
    row("-", Reading::NotANumber, 0);
    row("-0", Reading::NotANumber, 0);
    row("-1", Reading::NotANumber, 0);
    row("-" + QByteArray(40, '7'), Reading::NotANumber, 0);
    row("+7", Reading::NotANumber, 0);
    row(" 7", Reading::NotANumber, 0);
    row("7 ", Reading::NotANumber, 0);
    row("7 bytes", Reading::NotANumber, 0);
    row("0x10", Reading::NotANumber, 0);
    row("1.5", Reading::NotANumber, 0);
    row(QByteArray(40, '7') + "x", Reading::NotANumber, 0);
    row("many", Reading::NotANumber, 0);
}

void FileInfoTextTest::exactSizeIsChecked()
{
    QFETCH(QByteArray, size);
    const QByteArray answer = "create=\"20200131124502\";size=\"" + size + "\";time=\"37\";";
    const card::ExactSize exact = card::exactSize(answer.constData());
    QTEST(exact.reading, "reading");
    QTEST(qint64{exact.bytes}, "bytes");
}

void FileInfoTextTest::answerWithoutASizeHasNoExactSize_data()
{
    QTest::addColumn<QByteArray>("answer");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no size") << QByteArray("create=\"20200131124502\";time=\"37\";");
    QTest::newRow("cut in the size") << QByteArray("create=\"20200131124502\";size=\"37");
    QTest::newRow("after a zero byte") << QByteArray("time=\"37\";\0size=\"5\";", 21);
}

void FileInfoTextTest::answerWithoutASizeHasNoExactSize()
{
    QFETCH(QByteArray, answer);
    const card::ExactSize exact = card::exactSize(answer.constData());
    QCOMPARE(exact.reading, Reading::Missing);
    QCOMPARE(qint64{exact.bytes}, qint64{0});
}

BELUN_TEST(FileInfoTextTest)

#include "FileInfoTextTest.moc"
