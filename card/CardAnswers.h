// Parses the camera's answers. They are C strings: everything after a zero byte is ignored and
// never read. Their grammar is in CardCommands.h.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace card {

/// Returns the text between the first `left` and the first `right` after it, if both are there.
std::optional<std::string_view> textBetween(const char* answer, const char* left,
                                            const char* right);

/// Copies that text with a terminating zero into `buffer`, which has at least the size of `answer`,
/// and returns its length. Returns 0 and writes nothing if a marker is missing.
int copyTextBetween(const char* answer, char* buffer, const char* left, const char* right);

/// Returns a zeroed buffer with room for any text of the answer and its terminating zero, but at
/// least the 32 bytes that the camera's own texts need.
std::vector<char> scratchFor(std::string_view answer);

/// Returns the number of files to query for details: the count stated by the camera, or 0 if it is
/// negative or not a number. A count larger than the name table or than an int is an older text
/// (the count is searched for in everything received since the text was last cleared, and a
/// creation time is a number with fourteen digits); then returns the number of files just listed.
int filesToAskAbout(const char* countText, int listedFiles);

/// One entry of a file list. The name is missing if the answer has none at or after the entry. It
/// may also be the next entry's name, because the search does not stop at the semicolon.
struct ListEntry
{
    std::optional<std::string_view> name; ///< Points into the answer.
};

/// Walks a file list of any length in linear time.
class FileListWalk
{
public:
    /// `answer` must outlive this object and the names it returns.
    explicit FileListWalk(const char* answer);

    /// Returns the next entry, or none at a carriage return at the start of an entry and at the end
    /// of the answer.
    std::optional<ListEntry> next();

private:
    void findName();

    const char* m_entry;                    // start of the next entry
    std::optional<std::string_view> m_name; // the first name whose tag is at or after m_entry
};

} // namespace card
