// Walking the list of the card's files.
//
// Input: the list as the camera sends it.
#include "card/CardAnswers.h"
#include "tests/fuzz/Require.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

using card::NameTable;

constexpr int mostRows = 128;
// The last slot that the names of an input can reach, the last one running on behind its own.
constexpr int lastReached = mostRows + fuzz::longestInput / NameTable::slotSize + 1;
constexpr std::size_t reach = (lastReached + 1) * NameTable::slotSize;
constexpr int lastSlots = 20; // at the end of the table

/// The same walk over a text, with the slots in a block of its own.
std::vector<std::string> expectedRows(std::string_view list, std::vector<char>& block)
{
    std::vector<std::string> rows;
    while (!list.empty() && list[0] != '\r' && rows.size() < mostRows) {
        char* slot = block.data() + rows.size() * NameTable::slotSize;
        const std::size_t tag = list.find("ZEPNA/");
        const std::size_t nameEnd = tag == std::string_view::npos ? tag : list.find(';', tag);
        if (nameEnd != std::string_view::npos) {
            const std::string_view name = list.substr(tag + 6, nameEnd - tag - 6);
            name.copy(slot, name.size());
            slot[name.size()] = '\0';
        }
        rows.emplace_back(slot);
        const std::size_t entryEnd = list.find(';');
        list.remove_prefix(entryEnd == std::string_view::npos ? list.size() : entryEnd + 1);
    }
    return rows;
}

/// A table that reads as a new one. Making one anew for every input would take most of the time;
/// the slots that an input can reach are emptied instead.
NameTable& emptyTable()
{
    static NameTable names;
    for (int slot = 0; slot <= lastReached; ++slot) {
        names.store(slot, "");
    }
    for (int slot = NameTable::capacity - lastSlots; slot < NameTable::capacity; ++slot) {
        names.store(slot, "");
    }
    return names;
}

/// A name stored near the end of the table is cut there.
void requireCutAtTheEnd(NameTable& names, int slot, std::string_view name)
{
    names.store(slot, name);
    const std::size_t room =
        static_cast<std::size_t>(NameTable::capacity - slot) * NameTable::slotSize - 1;
    fuzz::require(names[slot] == name.substr(0, room), "a name is cut where the table ends");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input = fuzz::textOf(data, size);
    const fuzz::ExactCString answer(input);
    const std::string_view list = input.c_str(); // up to the first zero byte
    NameTable& names = emptyTable();
    const std::vector<std::string> rows = card::readFileList(answer.get(), names);

    std::vector<char> block(reach);
    fuzz::require(rows == expectedRows(list, block), "a row for every entry, with its slot's text");
    for (int slot = 0; slot <= lastReached; ++slot) {
        const char* expected = &block[static_cast<std::size_t>(slot) * NameTable::slotSize];
        fuzz::require(std::strcmp(names[slot], expected) == 0,
                      "the slots hold the names that were listed, and no other is written");
    }
    requireCutAtTheEnd(names, NameTable::capacity - 1 - static_cast<int>(size % lastSlots), list);
    return 0;
}
