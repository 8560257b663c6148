// The table rows selected for a download or a delete.
#pragma once

#include <array>

#include <QtGlobal>

namespace card {

/// Row numbers, largest first: removing rows in this order never shifts the remaining ones.
using SelectedRows = std::array<qint32, 9999>;

/// Inserts a row in order among the first `count` entries and increments `count`. A row that is
/// already there is inserted again; a full record ignores further rows.
void insertLargestFirst(SelectedRows& rows, qint32& count, qint32 row);

/// Returns the entry at a position, -1 for a position outside the record.
qint32 rowAt(const SelectedRows& rows, qint32 position);

} // namespace card
