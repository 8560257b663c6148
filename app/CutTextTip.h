// A tool tip with the whole text of a table's cell that is too small for it.
#pragma once

#include <QObject>

class QHelpEvent;
class QTableWidget;

/// Shows the tool tip of every cell of one table whose text is cut off, and none of the others.
/// Belongs to the table. Delegate and items know nothing of it.
class CutTextTip : public QObject
{
    Q_OBJECT

public:
    explicit CutTextTip(QTableWidget& table);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void answer(QHelpEvent& event) const;

    QTableWidget& m_table;
};
