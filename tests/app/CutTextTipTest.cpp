// Tool tips in the file table: a cell whose text is cut off has a tip with the whole text, and no
// other cell has a tip.
#include "card/FileTable.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <memory>

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QImage>
#include <QTextDocument>
#include <QToolTip>

class CutTextTipTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void cutNameIsShownWhole_data();
    void cutNameIsShownWhole();
    void textThatFitsHasNone();
    void cutDetailIsShownWhole();
    void placeWithoutACellHasNone();
    void tipGoesAtACellThatFits();
    void tipGoesWithItsRow();
    void tipIsShownExactlyWhenThePaintedTextIsCut_data();
    void tipIsShownExactlyWhenThePaintedTextIsCut();
    void nameOnTwoLinesIsWholeWhereBothFit();
    void itemsHaveNoTipOfTheirOwn();

private:
    QTableWidget& table() const { return m_user->table(); }
    /// Rests the mouse at a place of the table. Returns whether a tip is shown.
    bool restMouseAt(const QPoint& place) const
    {
        QHelpEvent event(QEvent::ToolTip, place, table().viewport()->mapToGlobal(place));
        QApplication::sendEvent(table().viewport(), &event);
        return event.isAccepted();
    }
    bool restMouseOn(int row, int column) const
    {
        return restMouseAt(table().visualItemRect(table().item(row, column)).center());
    }
    /// Returns the tip's text as displayed, with markup interpreted.
    static QString shownTip()
    {
        QTextDocument document;
        if (Qt::mightBeRichText(QToolTip::text())) {
            document.setHtml(QToolTip::text());
        } else {
            document.setPlainText(QToolTip::text());
        }
        return document.toPlainText();
    }
    /// Sets the height of the first row and returns how many pixels of its name's cell are dark.
    int paintedPixels(int height) const
    {
        table().setRowHeight(0, height);
        const QImage cell = paintedCell(table().columnWidth(card::NameColumn));
        int dark = 0;
        for (int y = 0; y < cell.height(); ++y) {
            for (int x = 0; x < cell.width(); ++x) {
                dark += qGray(cell.pixel(x, y)) < 128 ? 1 : 0;
            }
        }
        return dark;
    }
    QImage paintedCell(int width) const
    {
        table().setColumnWidth(card::NameColumn, width);
        return table().viewport()->grab(table().visualItemRect(table().item(0, 0))).toImage();
    }

    std::unique_ptr<UserWindow> m_user;
};

void CutTextTipTest::init()
{
    m_user = std::make_unique<UserWindow>();
    QVERIFY(QTest::qWaitForWindowExposed(&m_user->window()));
}

void CutTextTipTest::cleanup()
{
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    m_user.reset();
    QApplication::setStyle(QStringLiteral("Fusion"));
}

void CutTextTipTest::cutNameIsShownWhole_data()
{
    QTest::addColumn<QString>("name");
    const QString end = QString(60, QLatin1Char('x')) + QStringLiteral(".mp4");
    QTest::newRow("one word") << end;
    QTest::newRow("words") << "a recording of some length made on the sixth dive.mp4";
    QTest::newRow("markup") << "<b>bold</b><img src='http://192.168.1.120/'>" + end;
    QTest::newRow("markup around spaces") << "<i>  two  spaces  </i>" + end;
    QTest::newRow("entities") << "&lt;b&amp;" + end;
    QTest::newRow("line feed") << QStringLiteral("one\ntwo.mp4");
    QTest::newRow("ampersand") << "this & that" + end;
    QTest::newRow("Chinese") << QString(40, QChar(0x5f55));
}

void CutTextTipTest::cutNameIsShownWhole()
{
    QFETCH(QString, name);
    card::addNameRow(table(), 0, name);
    QVERIFY(restMouseOn(0, card::NameColumn));
    QVERIFY(QToolTip::isVisible());
    QCOMPARE(shownTip().replace(QChar::Nbsp, QLatin1Char(' ')), name);
}

void CutTextTipTest::textThatFitsHasNone()
{
    card::addNameRow(table(), 0, QStringLiteral("VID_0001.MP4"));
    card::setDetail(table(), 0, card::DateColumn, QStringLiteral("2020.01.31 12:45:02"),
                    Qt::AlignCenter);
    QVERIFY(!restMouseOn(0, card::NameColumn));
    QVERIFY(!restMouseOn(0, card::DateColumn));
    QVERIFY(!QToolTip::isVisible());
}

void CutTextTipTest::cutDetailIsShownWhole()
{
    const QString date = QStringLiteral("2020.01.31 12:45:02");
    card::addNameRow(table(), 0, QStringLiteral("VID_0001.MP4"));
    card::setDetail(table(), 0, card::DateColumn, date, Qt::AlignCenter);
    table().horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table().setColumnWidth(card::DateColumn, 50);
    QVERIFY(restMouseOn(0, card::DateColumn));
    QCOMPARE(QToolTip::text(), date);
}

void CutTextTipTest::placeWithoutACellHasNone()
{
    card::addNameRow(table(), 0, QString(90, QLatin1Char('x')));
    QVERIFY(!restMouseAt(QPoint(40, table().viewport()->height() - 5)));
    const QPoint detail(table().columnViewportPosition(card::SizeColumn) + 5, 5);
    QVERIFY(!restMouseAt(detail));
}

void CutTextTipTest::tipGoesAtACellThatFits()
{
    card::addNameRow(table(), 0, QString(90, QLatin1Char('x')));
    card::addNameRow(table(), 1, QStringLiteral("y.mp4"));
    QVERIFY(restMouseOn(0, card::NameColumn));
    QVERIFY(QToolTip::isVisible());
    QVERIFY(!restMouseOn(1, card::NameColumn));
    QTRY_VERIFY(!QToolTip::isVisible());
}

void CutTextTipTest::tipGoesWithItsRow()
{
    card::addNameRow(table(), 0, QString(90, QLatin1Char('x')));
    card::addNameRow(table(), 1, QStringLiteral("y.mp4"));
    QVERIFY(restMouseOn(0, card::NameColumn));
    QVERIFY(QToolTip::isVisible());
    table().removeRow(0);
    QTRY_VERIFY(!QToolTip::isVisible());
}

void CutTextTipTest::tipIsShownExactlyWhenThePaintedTextIsCut_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("name");
    for (const char* style : {"Fusion", "Windows"}) {
        for (const char* name : {"VID_0001_2020_01_31.MP4", "two words.mp4"}) {
            QTest::addRow("%s, %s", style, name) << style << name;
        }
    }
}

/// The text is cut if the cell is painted differently from the same part of a wide cell.
void CutTextTipTest::tipIsShownExactlyWhenThePaintedTextIsCut()
{
    QFETCH(QString, style);
    QFETCH(QString, name);
    QApplication::setStyle(style);
    card::addNameRow(table(), 0, name);
    table().horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    const int enough = table().fontMetrics().boundingRect(name).width() + 20;
    const QImage whole = paintedCell(enough + 40);
    int cuts = 0;
    for (int width = enough - 40; width <= enough; ++width) {
        const bool isCut = paintedCell(width) != whole.copy(0, 0, width, whole.height());
        QVERIFY2(restMouseOn(0, card::NameColumn) == isCut, qPrintable(QString::number(width)));
        cuts += isCut ? 1 : 0;
    }
    QVERIFY(cuts > 0 && cuts < 40);
}

void CutTextTipTest::nameOnTwoLinesIsWholeWhereBothFit()
{
    card::addNameRow(table(), 0, QStringLiteral("two words.mp4"));
    table().horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    const int longerWord = table().fontMetrics().boundingRect(QStringLiteral("words.mp4")).width();
    table().setColumnWidth(card::NameColumn, longerWord + 12);
    QVERIFY(restMouseOn(0, card::NameColumn));
    const int bothLines = paintedPixels(100);
    int cuts = 0;
    for (int height = 100; height >= 20; --height) {
        const bool isCut = paintedPixels(height) != bothLines;
        QVERIFY2(restMouseOn(0, card::NameColumn) == isCut, qPrintable(QString::number(height)));
        cuts += isCut ? 1 : 0;
    }
    QVERIFY(cuts > 0 && cuts < 80);
}

void CutTextTipTest::itemsHaveNoTipOfTheirOwn()
{
    card::addNameRow(table(), 0, QString(90, QLatin1Char('x')));
    QVERIFY(table().item(0, card::NameColumn)->data(Qt::ToolTipRole).isNull());
}

BELUN_TEST(CutTextTipTest)

#include "CutTextTipTest.moc"
