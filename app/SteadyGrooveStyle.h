// A style that answers the progress bar's question about its groove from memory.
#pragma once

#include <QProxyStyle>
#include <QRect>
#include <QStyleOption>

/// Looks like the style whose name it is given. A progress bar asks for its groove at each new
/// value, to tell whether there is anything to repaint, and the styles lay its text out anew to
/// answer: most of what a download costs the window's thread. As long as the bar and its text are
/// the same, so is the groove. One bar, one thread.
class SteadyGrooveStyle : public QProxyStyle
{
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;

private:
    mutable QStyleOptionProgressBar m_asked;
    mutable QRect m_groove; // of what was asked last; none before
};
