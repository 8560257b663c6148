// Date, size and duration as shown in the table. The answers are recorded, one case per file.
#include "card/FileInfoText.h"

#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QFile>
#include <QIODevice>
#include <QObject>
#include <QString>
#include <QTest>

using Reading = card::ExactSize::Reading;
Q_DECLARE_METATYPE(Reading)

class FileInfoTextTest : public QObject
{
    Q_OBJECT

private slots:
    void answerBecomesDateSizeAndDuration_data();
    void answerBecomesDateSizeAndDuration();
    void missingFieldShowsTheTextBefore_data();
    void missingFieldShowsTheTextBefore();
    void creationTimeShowsAsDateAndTime_data();
    void creationTimeShowsAsDateAndTime();
    void sizeShowsInWholeUnits_data();
    void sizeShowsInWholeUnits();
    void durationIsShownAsReceived_data();
    void durationIsShownAsReceived();
    void exactSizeIsChecked_data();
    void exactSizeIsChecked();
    void answerWithoutASizeHasNoExactSize_data();
    void answerWithoutASizeHasNoExactSize();
};

void FileInfoTextTest::answerBecomesDateSizeAndDuration_data()
{
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("duration");

    const auto row = [](const char* file, const QString& date, const QString& size,
                        const QString& duration) {
        QTest::newRow(file) << date << size << duration;
    };
    const QString date = QStringLiteral("2020-01-31  12:45:02");
    row("ordinary", date, "1MB", "37s");
    row("other-order", date, "1MB", "37s");
    row("one-line", date, "1MB", "37s");
    row("repeated-keys", date, "1KB", "5s");
    row("long-create", date, "1KB", "5s");
    row("short-create", "2020--  ::", "1KB", "5s");
    row("empty-values", "--  ::", "KB", "s");
    row("time-no-number", date, "KB", "a whiles");
    // For a missing field, the text of the field before it is used: a missing size is the low 32
    // bits of the creation time, and a missing duration is the number shown as the size.
    row("empty", "--  ::", "KB", "s");
    row("no-create", "--  ::", "1MB", "37s");
    row("no-size", date, "858MB", "37s");
    row("no-time", date, "1MB", "1s");
    row("only-create", date, "858MB", "858s");
    row("size-without-end", date, "858MB", "37s");
    row("zero-byte-ends", date, "858MB", "858s");
    // Values longer than those of any recording.
    row("forty-digits", "2222-22-22  22:22:22", "KB",
        QString(40, QLatin1Char('4')) + QLatin1Char('s'));
    row("four-thousand-digits", "2222-22-22  22:22:22", "KB",
        QString(4000, QLatin1Char('4')) + QLatin1Char('s'));
}

void FileInfoTextTest::answerBecomesDateSizeAndDuration()
{
    QFile recorded(
        QStringLiteral(TEST_DATA "/fileinfo/%1.txt").arg(QLatin1String(QTest::currentDataTag())));
    QVERIFY2(recorded.open(QIODevice::ReadOnly), qPrintable(recorded.fileName()));
    const QByteArray answer = recorded.readAll();
    const card::FileInfoText texts = card::readFileInfo(answer.constData());
    QTEST(texts.date, "date");
    QTEST(texts.size, "size");
    QTEST(texts.duration, "duration");
}

void FileInfoTextTest::missingFieldShowsTheTextBefore_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("shown");

    QTest::newRow("no size: the creation text is read as one")
        << QByteArray("create=\"00000000500000\";time=\"37\";") << "0000-00-00  50:00:00|488KB|37s";
    QTest::newRow("no time: the size's digits")
        << QByteArray("create=\"20200131124502\";size=\"3145728\";")
        << "2020-01-31  12:45:02|3MB|3s";
    QTest::newRow("no time, small size: nothing")
        << QByteArray("create=\"20200131124502\";size=\"12\";") << "2020-01-31  12:45:02|KB|s";
    QTest::newRow("no time, negative size: the size as received")
        << QByteArray("create=\"20200131124502\";size=\"-2048\";")
        << "2020-01-31  12:45:02|-2048KB|-2048s";
    QTest::newRow("value not closed: up to the next closing")
        << QByteArray("create=\"20200131124502\";size=\"4096;time=\"3\";")
        << "2020-01-31  12:45:02|4KB|3s";
}

void FileInfoTextTest::missingFieldShowsTheTextBefore()
{
    QFETCH(QByteArray, answer);
    const card::FileInfoText texts = card::readFileInfo(answer.constData());
    QTEST(texts.date + '|' + texts.size + '|' + texts.duration, "shown");
}

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
    QTest::newRow("six digits") << QByteArray("202001") << "2020-01-  ::";
    QTest::newRow("eight digits") << QByteArray("20200131") << "2020-01-31  ::";
    QTest::newRow("thirteen digits") << QByteArray("2020013112450") << "2020-01-31  12:45:0";
    QTest::newRow("four digits") << QByteArray("2020") << "2020--  ::";
    QTest::newRow("nothing") << QByteArray() << "--  ::";
}

void FileInfoTextTest::creationTimeShowsAsDateAndTime()
{
    QFETCH(QByteArray, field);
    const QByteArray answer = "create=\"" + field + "\";size=\"2047\";time=\"37\";";
    QTEST(card::readFileInfo(answer.constData()).date, "text");
}

void FileInfoTextTest::sizeShowsInWholeUnits_data()
{
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<QString>("text");

    const auto row = [](const char* size, const char* text) {
        QTest::newRow(size) << QByteArray(size) << QString::fromLatin1(text);
    };
    row("0", "KB");
    row("500", "KB");
    row("1023", "KB");
    row("1024", "1KB");
    row("2047", "1KB");
    row("1048575", "1023KB");
    row("1048576", "1MB");
    row("1572864", "1MB");
    row("67108864", "64MB");
    row("2147483647", "2047MB");
    row("2147483648", "2147483648KB"); // negative in 32 bits, shown as received
    row("-1", "KB");
    row("-1023", "KB");
    row("-1024", "-1024KB");
    row("-2048", "-2048KB");
    row("-2147483648", "-2147483648KB");
    row("-5000", "-5000KB");
    row("-5000x", "-5000xKB");
    row("3221225472", "3221225472KB");
    row("12 bytes", "KB");
    row("2048 bytes", "2KB");
    row("large", "KB");
}

void FileInfoTextTest::sizeShowsInWholeUnits()
{
    QFETCH(QByteArray, size);
    const QByteArray answer = "create=\"20200131124502\";size=\"" + size + "\";time=\"37\";";
    QTEST(card::readFileInfo(answer.constData()).size, "text");
}

void FileInfoTextTest::durationIsShownAsReceived_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("text");

    QTest::newRow("seconds") << QByteArray("37") << "37s";
    QTest::newRow("nothing") << QByteArray() << "s";
    QTest::newRow("no number") << QByteArray("a while") << "a whiles";
    QTest::newRow("outside ASCII") << QByteArray("深") << QStringLiteral("深s");
}

void FileInfoTextTest::durationIsShownAsReceived()
{
    QFETCH(QByteArray, field);
    const QByteArray answer = "create=\"20200131124502\";size=\"2047\";time=\"" + field + "\";";
    QTEST(card::readFileInfo(answer.constData()).duration, "text");
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
