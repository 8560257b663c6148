// A recording's details in the window's table; marker search and number conversion.
#include "app/MainWindow.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowProbe.h"

#include <memory>

#include <QByteArray>
#include <QColor>
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

    void answerFillsDateSizeAndDuration();
    void cellsAreGrayAndAligned();
    void nameCellStaysAsItIs();
    void rowThatDoesNotExistIsIgnored_data();
    void rowThatDoesNotExistIsIgnored();

    void markerSearchCopiesTheTextAndReturnsItsLength();
    void markerSearchOfAnEmptyTextTerminatesTheBuffer();
    void answerWithoutMarkersLeavesTheBufferAlone();

    void numberIsWrittenInItsBase();

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

/// Creates a window whose table has three rows with only names.
void FileInfoTest::init()
{
    m_window = std::make_unique<MainWindow>();
    for (int row = 0; row < 3; ++row) {
        table().insertRow(row);
        table().setItem(row, 0, new QTableWidgetItem(QStringLiteral("F%1.mp4").arg(row)));
    }
}

void FileInfoTest::answerFillsDateSizeAndDuration()
{
    parse("create=\"20200131124502\";size=\"2047\";time=\"37\";", 1);
    QCOMPARE(shown(1, 1), QStringLiteral("2020-01-31  12:45:02"));
    QCOMPARE(shown(1, 2), QStringLiteral("1KB"));
    QCOMPARE(shown(1, 3), QStringLiteral("37s"));
    for (const int other : {0, 2}) {
        QCOMPARE(shown(other, 1), QStringLiteral("no item"));
    }
}

void FileInfoTest::cellsAreGrayAndAligned()
{
    parse("create=\"20200131124502\";size=\"2047\";time=\"37\";", 2);
    const int alignments[] = {0x0084, 0x0002, 0x0084}; // the size has no vertical alignment
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

void FileInfoTest::rowThatDoesNotExistIsIgnored_data()
{
    QTest::addColumn<int>("row");

    for (const int row : {-128, -1, 3, 9998}) {
        QTest::newRow(QByteArray::number(row).constData()) << row;
    }
}

void FileInfoTest::rowThatDoesNotExistIsIgnored()
{
    QFETCH(int, row);
    parse("create=\"20200131124502\";size=\"2047\";time=\"37\";", row);
    QCOMPARE(table().rowCount(), 3);
    for (int other = 0; other < 3; ++other) {
        QCOMPARE(shown(other, 1), QStringLiteral("no item"));
    }
}

void FileInfoTest::markerSearchCopiesTheTextAndReturnsItsLength()
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

void FileInfoTest::answerWithoutMarkersLeavesTheBufferAlone()
{
    QByteArray buffer(32, '#');
    QCOMPARE(search("=\"12", buffer), 0);
    QCOMPARE(buffer, QByteArray(32, '#'));
}

void FileInfoTest::numberIsWrittenInItsBase()
{
    QByteArray buffer(32, '#');
    support::WindowProbe(*m_window).call("itoa", Q_ARG(int, 255), Q_ARG(char*, buffer.data()),
                                         Q_ARG(int, 16));
    QCOMPARE(buffer, QByteArray("ff\0", 3) + QByteArray(29, '#'));
}

BELUN_TEST(FileInfoTest)

#include "FileInfoTest.moc"
