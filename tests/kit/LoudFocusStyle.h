// A style with a very visible focus frame.
#pragma once

#include <QPainter>
#include <QProxyStyle>
#include <QString>
#include <QStyleOption>

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
