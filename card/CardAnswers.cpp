#include "card/CardAnswers.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace card {

namespace {

constexpr char directoryTag[] = "ZEPNA/";
constexpr char entryEnd[] = ";";
constexpr char listEnd = '\r';
constexpr std::size_t smallestScratch = 32;

} // namespace

std::optional<std::string_view> textBetween(const char* answer, const char* left, const char* right)
{
    const char* start = std::strstr(answer, left);
    if (start == nullptr) {
        return std::nullopt;
    }
    start += std::strlen(left);
    const char* end = std::strstr(start, right);
    if (end == nullptr) {
        return std::nullopt;
    }
    return std::string_view(start, static_cast<std::size_t>(end - start));
}

std::vector<char> scratchFor(std::string_view answer)
{
    return std::vector<char>(std::max(smallestScratch, answer.size() + 1));
}

int leadingNumber(const char* text)
{
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

int filesToAskAbout(const char* countText, int listedFiles)
{
    const long count = std::strtol(countText, nullptr, 10);
    if (count > NameTable::capacity || count < INT_MIN) {
        return listedFiles;
    }
    return static_cast<int>(std::max(count, 0L));
}

std::vector<std::string> readFileList(const char* answer, NameTable& names)
{
    std::vector<std::string> rows;
    const char* entry = answer;
    while (*entry != '\0' && *entry != listEnd && rows.size() < rowLimit) {
        const int slot = static_cast<int>(rows.size());
        if (const auto name = textBetween(entry, directoryTag, entryEnd)) {
            names.store(slot, *name);
        }
        rows.emplace_back(names[slot]);
        const char* end = std::strstr(entry, entryEnd);
        if (end == nullptr) {
            break;
        }
        entry = end + std::strlen(entryEnd);
    }
    return rows;
}

} // namespace card
