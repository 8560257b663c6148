// The progress bar's groove, remembered.
#include "app/SteadyGrooveStyle.h"

#include "tests/support/TestMain.h"

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QObject>
#include <QProgressBar>
#include <QProxyStyle>
#include <QRect>
#include <QString>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QStyleOptionProgressBar>
#include <QTest>
#include <QWidget>

Q_DECLARE_METATYPE(QStyleOptionProgressBar)

namespace {

/// A style whose groove depends on the text, and which counts how often it is asked for it.
class CountingStyle : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;

    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override
    {
        const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option);
        if (element != SE_ProgressBarGroove || bar == nullptr) {
            return QProxyStyle::subElementRect(element, option, widget);
        }
        ++asked;
        return bar->rect.adjusted(0, 0, -static_cast<int>(bar->text.size()), 0);
    }

    mutable int asked = 0;
};

QStyleOptionProgressBar barOption()
{
    QStyleOptionProgressBar option;
    option.rect = QRect(0, 0, 300, 20);
    option.maximum = 1000;
    option.textVisible = true;
    option.text = QStringLiteral("9%");
    return option;
}

} // namespace

class SteadyGrooveStyleTest : public QObject
{
    Q_OBJECT

private slots:
    void sameBarIsAskedAboutOnce();
    void whatMovesTheGrooveIsAskedAboutAnew_data();
    void whatMovesTheGrooveIsAskedAboutAnew();
    void otherElementsAreNotRemembered();
    void everyValueLooksAsWithoutIt();
};

void SteadyGrooveStyleTest::sameBarIsAskedAboutOnce()
{
    auto* base = new CountingStyle; // belongs to the style
    const SteadyGrooveStyle style(base);
    QStyleOptionProgressBar option = barOption();
    for (int value = 90; value < 100; ++value) {
        option.progress = value;
        QCOMPARE(style.subElementRect(QStyle::SE_ProgressBarGroove, &option, nullptr),
                 QRect(0, 0, 298, 20));
    }
    QCOMPARE(base->asked, 1);
}

void SteadyGrooveStyleTest::whatMovesTheGrooveIsAskedAboutAnew_data()
{
    QTest::addColumn<QStyleOptionProgressBar>("changed");
    QTest::addColumn<QRect>("groove");
    QStyleOptionProgressBar option = barOption();
    option.text = QStringLiteral("10%");
    QTest::newRow("text") << option << QRect(0, 0, 297, 20);
    option = barOption();
    option.rect = QRect(0, 0, 200, 20);
    QTest::newRow("size") << option << QRect(0, 0, 198, 20);
    option = barOption();
    option.direction = Qt::RightToLeft;
    QTest::newRow("direction") << option << QRect(0, 0, 298, 20);
    option = barOption();
    option.textVisible = false;
    QTest::newRow("text hidden") << option << QRect(0, 0, 298, 20);
    option = barOption();
    option.textAlignment = Qt::AlignHCenter;
    QTest::newRow("alignment") << option << QRect(0, 0, 298, 20);
    option = barOption();
    option.fontMetrics = QFontMetrics(QFont(QStringLiteral("DejaVu Sans"), 31));
    QTest::newRow("font") << option << QRect(0, 0, 298, 20);
    option = barOption();
    option.state = QStyle::State_Active;
    QTest::newRow("state") << option << QRect(0, 0, 298, 20);
}

void SteadyGrooveStyleTest::whatMovesTheGrooveIsAskedAboutAnew()
{
    QFETCH(const QStyleOptionProgressBar, changed);
    QFETCH(const QRect, groove);
    auto* base = new CountingStyle;
    const SteadyGrooveStyle style(base);
    const QStyleOptionProgressBar before = barOption();
    style.subElementRect(QStyle::SE_ProgressBarGroove, &before, nullptr);
    QCOMPARE(style.subElementRect(QStyle::SE_ProgressBarGroove, &changed, nullptr), groove);
    QCOMPARE(base->asked, 2);
}

void SteadyGrooveStyleTest::otherElementsAreNotRemembered()
{
    const SteadyGrooveStyle style(new CountingStyle);
    const QStyleOptionProgressBar option = barOption();
    style.subElementRect(QStyle::SE_ProgressBarGroove, &option, nullptr);
    QCOMPARE(style.subElementRect(QStyle::SE_ProgressBarContents, &option, nullptr),
             style.baseStyle()->subElementRect(QStyle::SE_ProgressBarContents, &option, nullptr));
}

void SteadyGrooveStyleTest::everyValueLooksAsWithoutIt()
{
    SteadyGrooveStyle style;
    QProgressBar plain;
    QProgressBar steady;
    steady.setStyle(&style);
    for (QProgressBar* bar : {&plain, &steady}) {
        bar->resize(333, 24);
        bar->setMaximum(1'000'000);
    }
    for (int value = 0; value <= 1'000'000; value += 12'345) {
        plain.setValue(value);
        steady.setValue(value);
        QCOMPARE(steady.grab().toImage(), plain.grab().toImage());
    }
}

BELUN_TEST(SteadyGrooveStyleTest)

#include "SteadyGrooveStyleTest.moc"
