// The details of a recording in the window's table. The answers are recorded, one case per file.
#include "app/MainWindow.h"
#include "tests/support/TestMain.h"
#include "tests/support/WindowProbe.h"

#include <memory>

#include <QByteArray>
#include <QColor>
#include <QFile>
#include <QIODevice>
#include <QObject>
#include <QString>
#include <QTableWidget>
#include <QTableWidgetItem>
#include <QTest>

class FileInfoTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void answerFillsDateSizeAndDuration_data();
    void answerFillsDateSizeAndDuration();
    void sizeShowsInWholeUnits_data();
    void sizeShowsInWholeUnits();
    void cellsAreGrayAndAligned();
    void nameCellStaysAsItIs();
    void rowThatDoesNotExistIsPassedOver_data();
    void rowThatDoesNotExistIsPassedOver();

    void markerSearchCopiesTheTextAndTellsItsLength();
    void markerSearchOfAnEmptyTextTerminatesTheBuffer();
    void answerWithoutMarkersLeavesTheBufferAlone_data();
    void answerWithoutMarkersLeavesTheBufferAlone();

private:
    QTableWidget& table() const
    {
        return support::WindowProbe(*m_window).child<QTableWidget>("tableWidgetFileInfo");
    }
    void parse(const QByteArray& answer, int row) const
    {
        support::WindowProbe(*m_window).call(
            "ParseFileInfo", Q_ARG(const char*, answer.constData()), Q_ARG(int, row));
    }
    int search(const QByteArray& answer, QByteArray& buffer) const
    {
        int length = -1;
        support::WindowProbe(*m_window).call(
            "findSubString", Q_RETURN_ARG(int, length), Q_ARG(const char*, answer.constData()),
            Q_ARG(char*, buffer.data()), Q_ARG(const char*, "=\""), Q_ARG(const char*, "\";"));
        return length;
    }
    QString shown(int row, int column) const
    {
        const QTableWidgetItem* item = table().item(row, column);
        return item == nullptr ? QStringLiteral("no item") : item->text();
    }

    std::unique_ptr<MainWindow> m_window;
};

/// Three rows with names and nothing else.
void FileInfoTest::init()
{
    m_window = std::make_unique<MainWindow>();
    for (int row = 0; row < 3; ++row) {
        table().insertRow(row);
        table().setItem(row, 0, new QTableWidgetItem(QStringLiteral("F%1.mp4").arg(row)));
    }
}

void FileInfoTest::answerFillsDateSizeAndDuration_data()
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
    // A field that is missing shows the one before it: the size then is the creation time's low 32
    // bits, the duration the size's digits.
    row("empty", "--  ::", "KB", "s");
    row("no-create", "--  ::", "1MB", "37s");
    row("no-size", date, "858MB", "37s");
    row("no-time", date, "1MB", "1s");
    row("only-create", date, "858MB", "858s");
    row("size-without-end", date, "858MB", "37s");
    row("zero-byte-ends", date, "858MB", "858s");
    // Longer than any recording's.
    row("forty-digits", "2222-22-22  22:22:22", "KB",
        QString(40, QLatin1Char('4')) + QLatin1Char('s'));
    row("four-thousand-digits", "2222-22-22  22:22:22", "KB",
        QString(4000, QLatin1Char('4')) + QLatin1Char('s'));
}

void FileInfoTest::answerFillsDateSizeAndDuration()
{
    QFile recorded(
        QStringLiteral(TEST_DATA "/fileinfo/%1.txt").arg(QLatin1String(QTest::currentDataTag())));
    QVERIFY2(recorded.open(QIODevice::ReadOnly), qPrintable(recorded.fileName()));
    parse(recorded.readAll(), 1);
    QTEST(shown(1, 1), "date");
    QTEST(shown(1, 2), "size");
    QTEST(shown(1, 3), "duration");
    for (const int other : {0, 2}) {
        QCOMPARE(shown(other, 1), QStringLiteral("no item"));
    }
}

void FileInfoTest::sizeShowsInWholeUnits_data()
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
    row("-1", "KB");
    row("-1023", "KB");
    row("-1024", "-1024KB");
    row("-2048", "-2048KB");
    row("-2147483648", "-2147483648KB");
    row("3221225472", "3221225472KB"); // negative in 32 bits, shown as received
    row("12 bytes", "KB");
    row("2048 bytes", "2KB");
}

void FileInfoTest::sizeShowsInWholeUnits()
{
    QFETCH(QByteArray, size);
    parse("create=\"20200131124502\";size=\"" + size + "\";time=\"37\";", 0);
    QTEST(shown(0, 2), "text");
}

void FileInfoTest::cellsAreGrayAndAligned()
{
    parse("create=\"20200131124502\";size=\"2047\";time=\"37\";", 2);
    const int alignments[] = {0x0084, 0x0002, 0x0084}; // the size has no vertical flag
    for (int column = 1; column <= 3; ++column) {
        const QTableWidgetItem* item = table().item(2, column);
        QVERIFY(item != nullptr);
        QCOMPARE(item->foreground().color(), QColor(128, 128, 128));
        QCOMPARE(item->textAlignment(), alignments[column - 1]);
    }
}

void FileInfoTest::nameCellStaysAsItIs()
{
    parse("create=\"20200131124502\";size=\"2047\";time=\"37\";", 2);
    QCOMPARE(shown(2, 0), QStringLiteral("F2.mp4"));
    QVERIFY(!table().item(2, 0)->data(Qt::ForegroundRole).isValid());
    QVERIFY(!table().item(2, 0)->data(Qt::TextAlignmentRole).isValid());
}

void FileInfoTest::rowThatDoesNotExistIsPassedOver_data()
{
    QTest::addColumn<int>("row");

    for (const int row : {-128, -1, 3, 9998}) {
        QTest::newRow(QByteArray::number(row).constData()) << row;
    }
}

void FileInfoTest::rowThatDoesNotExistIsPassedOver()
{
    QFETCH(int, row);
    parse("create=\"20200131124502\";size=\"2047\";time=\"37\";", row);
    QCOMPARE(table().rowCount(), 3);
    for (int other = 0; other < 3; ++other) {
        QCOMPARE(shown(other, 1), QStringLiteral("no item"));
    }
}

void FileInfoTest::markerSearchCopiesTheTextAndTellsItsLength()
{
    QByteArray buffer(32, '#');
    QCOMPARE(search("var a=\"12345\";b=\"6\";", buffer), 5);
    QCOMPARE(buffer, QByteArray("12345\0", 6) + QByteArray(26, '#'));
}

void FileInfoTest::markerSearchOfAnEmptyTextTerminatesTheBuffer()
{
    QByteArray buffer(32, '#');
    QCOMPARE(search("a=\"\";", buffer), 0);
    QCOMPARE(buffer, QByteArray("\0", 1) + QByteArray(31, '#'));
}

void FileInfoTest::answerWithoutMarkersLeavesTheBufferAlone_data()
{
    QTest::addColumn<QByteArray>("answer");

    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("no left marker") << QByteArray("12\";");
    QTest::newRow("no right marker") << QByteArray("=\"12");
    QTest::newRow("in the wrong order") << QByteArray("\";=\"12");
}

void FileInfoTest::answerWithoutMarkersLeavesTheBufferAlone()
{
    QFETCH(QByteArray, answer);
    QByteArray buffer(32, '#');
    QCOMPARE(search(answer, buffer), 0);
    QCOMPARE(buffer, QByteArray(32, '#'));
}

BELUN_TEST(FileInfoTest)

#include "FileInfoTest.moc"
