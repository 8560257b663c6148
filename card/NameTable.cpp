#include "card/NameTable.h"

#include <algorithm>

namespace card {

void NameTable::store(int slot, std::string_view name)
{
    if (!contains(slot)) {
        return;
    }
    const std::size_t start = static_cast<std::size_t>(slot) * slotSize;
    const std::size_t length = std::min(name.size(), m_block.size() - start - 1);
    std::copy_n(name.begin(), length, m_block.begin() + static_cast<std::ptrdiff_t>(start));
    m_block[start + length] = '\0';
}

const char* NameTable::operator[](int slot) const
{
    return contains(slot) ? m_block.data() + static_cast<std::size_t>(slot) * slotSize : "";
}

} // namespace card
