// A tool tip with the full text of a table cell that is too small for it.
#pragma once

#include <QObject>

class QHelpEvent;
class QTableWidget;

/// A tool tip for the cells of one table whose text is cut off, and for no others. Owned by the
/// table; the delegate and the items do not depend on it.
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
    bool m_isShown = false; // the table's last tool tip event showed a tip
};
