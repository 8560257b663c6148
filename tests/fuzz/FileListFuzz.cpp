// Fuzzes walking the file list and storing the names.
//
// Input: the list.
#include "card/CardAnswers.h"
#include "card/NameTable.h"
#include "tests/fuzz/Require.h"

#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using card::NameTable;
using Names = std::vector<std::optional<std::string_view>>;

// The last slot that the names of an input can reach: as many entries as bytes, with the last name
// extending into the slots after its own.
constexpr int lastReached = fuzz::longestInput + fuzz::longestInput / NameTable::slotSize + 1;
constexpr std::size_t reach = (lastReached + 1) * NameTable::slotSize;
constexpr int lastSlots = 20; // at the end of the table, for names that are cut there

/// Returns the names that walking the list must give, from an independent parser.
Names expectedNames(std::string_view list)
{
    Names names;
    while (!list.empty() && list[0] != '\r') {
        const std::size_t tag = list.find("ZEPNA/");
        const std::size_t nameEnd = tag == std::string_view::npos ? tag : list.find(';', tag);
        names.emplace_back();
        if (nameEnd != std::string_view::npos) {
            names.back() = list.substr(tag + 6, nameEnd - tag - 6);
        }
        const std::size_t entryEnd = list.find(';');
        list.remove_prefix(entryEnd == std::string_view::npos ? list.size() : entryEnd + 1);
    }
    return names;
}

Names walkedNames(const char* list)
{
    Names names;
    card::FileListWalk walk(list);
    while (const auto entry = walk.next()) {
        names.push_back(entry->name);
    }
    return names;
}

/// Returns a table whose relevant slots are empty, as in a new one. Creating one for every input
/// would take most of the time, so only the slots that an input can reach are cleared.
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

/// Requires that a name stored near the end of the table is cut at the end.
void requireCutAtTheEnd(NameTable& names, int slot, std::string_view name)
{
    names.store(slot, name);
    const std::size_t room =
        static_cast<std::size_t>(NameTable::capacity - slot) * NameTable::slotSize - 1;
    fuzz::require(names[slot] == name.substr(0, room),
                  "a name is truncated at the end of the table");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input = fuzz::textOf(data, size);
    const fuzz::ExactCString answer(input);
    const std::string_view list = input.c_str(); // up to the first zero byte
    const Names listed = walkedNames(answer.get());
    fuzz::require(listed == expectedNames(list), "an entry for each semicolon, with its name");

    NameTable& names = emptyTable();
    std::vector<char> block(reach); // the expected slots
    for (std::size_t row = 0; row < listed.size(); ++row) {
        if (listed[row]) {
            names.store(static_cast<int>(row), *listed[row]);
            char* slot = block.data() + row * NameTable::slotSize;
            listed[row]->copy(slot, listed[row]->size());
            slot[listed[row]->size()] = '\0';
        }
    }
    for (int slot = 0; slot <= lastReached; ++slot) {
        const char* expected = &block[static_cast<std::size_t>(slot) * NameTable::slotSize];
        fuzz::require(std::strcmp(names[slot], expected) == 0,
                      "the slots hold the listed names, and no other slot is written");
    }
    requireCutAtTheEnd(names, NameTable::capacity - 1 - static_cast<int>(size % lastSlots), list);
    return 0;
}
