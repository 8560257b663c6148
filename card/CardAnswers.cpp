#include "card/CardAnswers.h"

#include "card/CardCommands.h"
#include "card/NameTable.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace card {

namespace {

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

int copyTextBetween(const char* answer, char* buffer, const char* left, const char* right)
{
    const auto text = textBetween(answer, left, right);
    if (!text) {
        return 0;
    }
    *std::copy(text->begin(), text->end(), buffer) = '\0';
    return static_cast<int>(text->size());
}

std::vector<char> scratchFor(std::string_view answer)
{
    return std::vector<char>(std::max(smallestScratch, answer.size() + 1));
}

int filesToAskAbout(const char* countText, int listedFiles)
{
    const long count = std::strtol(countText, nullptr, 10);
    if (count > NameTable::capacity || count < INT_MIN) {
        return listedFiles;
    }
    return static_cast<int>(std::max(count, 0L));
}

FileListWalk::FileListWalk(const char* answer) : m_entry(answer)
{
    findName();
}

std::optional<ListEntry> FileListWalk::next()
{
    if (*m_entry == '\0' || *m_entry == listEnd) {
        return std::nullopt;
    }
    const ListEntry entry{m_name};
    static_assert(sizeof entryEnd == 2); // one character and the zero
    const char* end = std::strchr(m_entry, *entryEnd);
    m_entry = end == nullptr ? m_entry + std::strlen(m_entry) : end + 1;
    if (m_name && m_name->data() < m_entry) {
        findName();
    }
    return entry;
}

void FileListWalk::findName()
{
    m_name = textBetween(m_entry, directoryTag, entryEnd);
}

} // namespace card
