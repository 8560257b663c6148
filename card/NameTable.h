// The names of the card's files, in list order.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace card {

/// Fixed slots of 30 bytes in one contiguous block, each with room for a name of 29 bytes and its
/// terminating zero. A longer name runs on into the following slots, which is deliberate, but never
/// past the block. Slots keep their text until they are overwritten.
class NameTable
{
public:
    static constexpr int capacity = 9999;
    static constexpr std::size_t slotSize = 30;

    /// Stores a name at the start of a slot, and truncates the name at the end of the block. Does
    /// nothing for a slot outside the table.
    void store(int slot, std::string_view name);

    /// Returns the text that starts at a slot, up to the first zero; empty for a slot outside the
    /// table.
    const char* operator[](int slot) const;

private:
    static bool contains(int slot) { return slot >= 0 && slot < capacity; }

    std::array<char, capacity * slotSize> m_block{}; // its last byte stays zero
};

} // namespace card
