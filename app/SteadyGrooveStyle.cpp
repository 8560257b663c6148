#include "app/SteadyGrooveStyle.h"

namespace {

/// Whether a style has the same to go by. The progress itself does not move the groove.
bool looksTheSame(const QStyleOptionProgressBar& one, const QStyleOptionProgressBar& other)
{
    return one.rect == other.rect && one.state == other.state && one.direction == other.direction &&
           one.fontMetrics == other.fontMetrics && one.textVisible == other.textVisible &&
           one.textAlignment == other.textAlignment && one.text == other.text &&
           one.styleObject == other.styleObject;
}

} // namespace

QRect SteadyGrooveStyle::subElementRect(SubElement element, const QStyleOption* option,
                                        const QWidget* widget) const
{
    const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option);
    if (element != SE_ProgressBarGroove || bar == nullptr) {
        return QProxyStyle::subElementRect(element, option, widget);
    }
    if (m_groove.isNull() || !looksTheSame(*bar, m_asked)) {
        m_groove = QProxyStyle::subElementRect(element, option, widget);
        m_asked = *bar;
    }
    return m_groove;
}
