// The selected rows of a table.
#pragma once

#include <algorithm>

#include <QItemSelectionModel>
#include <QList>
#include <QTableWidget>

/// Returns the numbers of the selected rows in ascending order.
inline QList<int> selectedRowsOf(const QTableWidget& table)
{
    QList<int> rows;
    for (const QModelIndex& index : table.selectionModel()->selectedRows()) {
        rows.append(index.row());
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}
