// Tool tips for table cells that are too small for their texts.
#pragma once

#include <QObject>

class QHelpEvent;
class QTableWidget;

/// The tool tips of one table. A cell whose text is cut off shows the text, or its first 4,096
/// characters, in a tip; other cells have no tip. The table owns this object; the table's delegate
/// and items do not depend on it.
class CutTextTip : public QObject
{
    Q_OBJECT

public:
    explicit CutTextTip(QTableWidget& table);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void answer(QHelpEvent& event);

    QTableWidget& m_table;
    bool m_isShown = false; // a tip was shown and has not been hidden by this object
};
