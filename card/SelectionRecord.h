// The table rows selected for a download or a delete.
#pragma once

#include <array>

#include <QtGlobal>

namespace card {

/// Row numbers, largest first: removing rows in this order never shifts a row still to be removed.
using SelectedRows = std::array<qint32, 9999>;

/// Inserts a row among the first `count` entries, which stay in order, and increments `count`. A
/// row that is already there is inserted again. Does nothing if the record is full or `count` is
/// negative.
void insertLargestFirst(SelectedRows& rows, qint32& count, qint32 row);

/// Returns the entry at a position, or -1 for a position outside the record.
qint32 rowAt(const SelectedRows& rows, qint32 position);

} // namespace card
