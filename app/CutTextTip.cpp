#include "app/CutTextTip.h"

#include <QAbstractItemModel>
#include <QEvent>
#include <QHelpEvent>
#include <QModelIndex>
#include <QRect>
#include <QString>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTableWidget>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <QToolTip>

namespace {

// Maximum length of a tip's text, in characters: longer than any valid file name, and still quick
// to lay out.
constexpr int longestText = 4096;

/// Returns the rectangle in which the style paints the text of a cell that contains only text.
QRect paintedRect(const QTableWidget& table, const QModelIndex& cell, const QString& text)
{
    QStyleOptionViewItem option;
    option.initFrom(&table);
    option.widget = &table;
    option.rect = table.visualRect(cell);
    option.features = QStyleOptionViewItem::HasDisplay | QStyleOptionViewItem::WrapText;
    option.showDecorationSelected = true;
    option.font = table.font();
    option.text = text;
    const QStyle& style = *table.style();
    const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, &option, &table) + 1;
    return style.subElementRect(QStyle::SE_ItemViewItemText, &option, &table)
        .adjusted(margin, 0, -margin, 0);
}

/// Returns whether the text of a cell is cut off. The text is wrapped between words, as the style
/// wraps it. It is cut off if a line is wider than the painted rectangle, or if a line other than
/// the first ends below that rectangle.
bool isCut(const QTableWidget& table, const QModelIndex& cell, const QString& text)
{
    const QRect rect = paintedRect(table, cell, text);
    QTextOption wrapping;
    wrapping.setWrapMode(QTextOption::WordWrap);
    QTextLayout layout(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator),
                       table.font());
    layout.setTextOption(wrapping);
    layout.beginLayout();
    qreal height = 0;
    bool cut = false;
    for (QTextLine line = layout.createLine(); line.isValid() && !cut; line = layout.createLine()) {
        line.setLineWidth(rect.width());
        cut = line.naturalTextWidth() > rect.width() ||
              (height > 0 && height + line.height() > rect.height());
        height += line.height();
    }
    layout.endLayout();
    return cut;
}

/// Returns the text to pass to QToolTip so that it displays `text` literally. QToolTip would
/// interpret a text that looks like markup, so such a text is escaped.
QString asPlainText(const QString& text)
{
    return Qt::mightBeRichText(text)
               ? QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped())
               : text;
}

} // namespace

CutTextTip::CutTextTip(QTableWidget& table) : QObject(&table), m_table(table)
{
    table.viewport()->installEventFilter(this);
    // Otherwise the tip of a removed row would stay over the row that takes its place.
    connect(table.model(), &QAbstractItemModel::rowsRemoved, this, [this] {
        if (m_isShown) {
            QToolTip::hideText();
            m_isShown = false;
        }
    });
}

bool CutTextTip::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::ToolTip) {
        return QObject::eventFilter(watched, event);
    }
    answer(static_cast<QHelpEvent&>(*event));
    return true;
}

void CutTextTip::answer(QHelpEvent& event)
{
    const QModelIndex cell = m_table.indexAt(event.pos());
    const QString text = cell.data().toString().left(longestText);
    m_isShown = cell.isValid() && isCut(m_table, cell, text);
    if (m_isShown) {
        QToolTip::showText(event.globalPos(), asPlainText(text), m_table.viewport(),
                           m_table.visualRect(cell));
    } else {
        QToolTip::hideText();
        event.ignore();
    }
}
