#include "card/SelectionRecord.h"

#include <algorithm>
#include <cstddef>
#include <functional>

namespace card {

void insertLargestFirst(SelectedRows& rows, qint32& count, qint32 row)
{
    if (count < 0 || count >= static_cast<qint32>(rows.size())) {
        return;
    }
    const auto end = rows.begin() + count;
    const auto place = std::lower_bound(rows.begin(), end, row, std::greater<>());
    std::move_backward(place, end, end + 1);
    *place = row;
    ++count;
}

qint32 rowAt(const SelectedRows& rows, qint32 position)
{
    const bool inside = position >= 0 && position < static_cast<qint32>(rows.size());
    return inside ? rows[static_cast<std::size_t>(position)] : -1;
}

} // namespace card
