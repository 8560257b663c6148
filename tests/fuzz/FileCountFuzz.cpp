// Fuzzes extracting the number of files on the card.
//
// Input: everything received since the text was last cleared. The count is the text between the
// first =" and the next ";
#include "card/CardAnswers.h"
#include "card/CardCommands.h"
#include "card/NameTable.h"
#include "tests/fuzz/Decimal.h"
#include "tests/fuzz/Require.h"

#include <algorithm>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input = fuzz::textOf(data, size);
    const fuzz::ExactCString answer(input);
    const std::string_view text = input.c_str();
    const auto found = card::textBetween(answer.get(), card::countStart, card::valueEnd);

    const std::size_t start = text.find("=\"");
    const std::size_t end = start == std::string_view::npos ? start : text.find("\";", start + 2);
    fuzz::require(found.has_value() == (end != std::string_view::npos),
                  "found exactly if both markers exist");

    std::vector<char> countText = card::scratchFor(answer.get());
    fuzz::require(countText.size() >= std::max<std::size_t>(32, text.size() + 1),
                  "the scratch buffer has room for any text of the answer");
    if (found) {
        fuzz::require(*found == text.substr(start + 2, end - start - 2),
                      "the text between the markers");
        *std::copy(found->begin(), found->end(), countText.begin()) = '\0';
    }

    constexpr int listed = 12345; // a number that cannot be a count
    const int files = card::filesToAskAbout(countText.data(), listed);
    fuzz::require(files == listed || (files >= 0 && files <= card::NameTable::capacity),
                  "no more files are queried than the table holds");
    if (const auto count = fuzz::shortDecimal(countText.data())) {
        fuzz::require(files == (*count <= card::NameTable::capacity ? *count : listed),
                      "a count is used unchanged; one beyond the table is ignored");
    }
    return 0;
}
