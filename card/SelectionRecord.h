// The table rows chosen for a download or a delete.
#pragma once

#include <array>

#include <QtGlobal>

namespace card {

/// Row numbers, largest first: rows removed in this order never shift one still to come.
using SelectedRows = std::array<qint32, 9999>;

/// Puts a row in its place among the first `count` entries and counts it. A row that is there
/// already is put in once more; a full record takes no more.
void insertLargestFirst(SelectedRows& rows, qint32& count, qint32 row);

/// The entry at a position, -1 for a position outside the record.
qint32 rowAt(const SelectedRows& rows, qint32 position);

} // namespace card
