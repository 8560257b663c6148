// Cells without a focus frame, compared pixel by pixel with those of the base delegate.
#include "card/NoFocusDelegate.h"

#include "tests/kit/TestMain.h"

#include <QApplication>
#include <QColor>
#include <QImage>
#include <QObject>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QRect>
#include <QStandardItem>
#include <QStandardItemModel>
#include <QString>
#include <QStyle>
#include <QStyleOption>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>
#include <QTest>

namespace {

/// A style that fills the area of every focus frame with pure red.
class LoudFocusStyle : public QProxyStyle
{
public:
    LoudFocusStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        if (element == PE_FrameFocusRect) {
            painter->fillRect(option->rect, QColor(255, 0, 0));
            return;
        }
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
};

} // namespace

class NoFocusDelegateTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void focusedCellLooksLikeAnUnfocusedOne_data();
    void focusedCellLooksLikeAnUnfocusedOne();
    void selectionColourStillShows();
    void optionOfTheViewStaysAsItIs();

private:
    static constexpr QStyle::State focus =
        QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;

    static QStyleOptionViewItem option(QStyle::State state)
    {
        QStyleOptionViewItem option;
        option.rect = QRect(0, 0, 120, 25);
        option.state = state;
        option.showDecorationSelected = true; // as in a table: the whole cell is coloured
        option.palette.setColor(QPalette::Highlight, QColor(89, 153, 247));
        return option;
    }
    QImage painted(const QStyledItemDelegate& delegate, QStyle::State state) const
    {
        QImage image(120, 25, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        delegate.paint(&painter, option(state), m_model.index(0, 0));
        return image;
    }

    QStandardItemModel m_model;
    QStyledItemDelegate m_base;
    NoFocusDelegate m_noFocus;
};

void NoFocusDelegateTest::initTestCase()
{
    QApplication::setStyle(new LoudFocusStyle);
    m_model.appendRow(new QStandardItem(QStringLiteral("BELUN_0001.mp4")));
}

void NoFocusDelegateTest::focusedCellLooksLikeAnUnfocusedOne_data()
{
    QTest::addColumn<int>("state");

    const auto row = [](const char* tag, QStyle::State state) {
        QTest::newRow(tag) << static_cast<int>(state);
    };
    row("enabled", QStyle::State_Enabled | QStyle::State_Active);
    row("selected", QStyle::State_Enabled | QStyle::State_Active | QStyle::State_Selected);
    row("selected in an inactive window", QStyle::State_Enabled | QStyle::State_Selected);
    row("under the mouse", QStyle::State_Enabled | QStyle::State_Active | QStyle::State_MouseOver);
    row("disabled", QStyle::State_None);
}

void NoFocusDelegateTest::focusedCellLooksLikeAnUnfocusedOne()
{
    QFETCH(int, state);
    const auto unfocused = static_cast<QStyle::State>(state);
    // Meaningful only if the base delegate shows the focus.
    QVERIFY(painted(m_base, unfocused | focus) != painted(m_base, unfocused));

    QCOMPARE(painted(m_noFocus, unfocused | focus), painted(m_base, unfocused));
    QCOMPARE(painted(m_noFocus, unfocused), painted(m_base, unfocused));
}

void NoFocusDelegateTest::selectionColourStillShows()
{
    const QImage cell = painted(m_noFocus, QStyle::State_Enabled | QStyle::State_Active |
                                               QStyle::State_Selected | focus);
    QCOMPARE(cell.pixelColor(118, 2), QColor(89, 153, 247));
}

void NoFocusDelegateTest::optionOfTheViewStaysAsItIs()
{
    const QStyleOptionViewItem given = option(QStyle::State_Enabled | focus);
    QImage image(120, 25, QImage::Format_RGB32);
    QPainter painter(&image);
    m_noFocus.paint(&painter, given, m_model.index(0, 0));
    QCOMPARE(static_cast<int>(given.state), static_cast<int>(QStyle::State_Enabled | focus));
    QVERIFY(!given.index.isValid());
}

BELUN_TEST(NoFocusDelegateTest)

#include "NoFocusDelegateTest.moc"
