// A tool tip with the full text of a table cell that is too small for it.
#pragma once

#include <QObject>

class QHelpEvent;
class QTableWidget;

/// Shows a tool tip for every cell of one table whose text is cut off, and for no other. Belongs to
/// the table; delegate and items do not know it.
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
    bool m_isShown = false; // a tip of this table's was the last one asked for
};
