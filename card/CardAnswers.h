// Reading the camera's answers. All of them are C strings: whatever follows a zero byte is not
// looked at, and nothing is read past it. Their grammar is in CardCommands.h.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace card {

/// Returns the text between the first `left` and the first `right` after it, if both are there.
std::optional<std::string_view> textBetween(const char* answer, const char* left,
                                            const char* right);

/// Copies that text with a terminating zero into `buffer`, which holds at least as much as
/// `answer`, and returns its length. Returns 0 and writes nothing if a marker is missing.
int copyTextBetween(const char* answer, char* buffer, const char* left, const char* right);

/// Returns a zeroed buffer that holds any text of the answer with its terminating zero, and never
/// less than the 32 bytes that the camera's own texts need.
std::vector<char> scratchFor(std::string_view answer);

/// Returns the number of files to query for details: the count as the camera states it, 0 if that
/// is negative or no number. A count beyond the name table or beyond an int is no count but an
/// older text (the count is looked for in everything received since the last emptying, and a
/// creation time reads as a number of fourteen digits); the files just listed are queried then.
int filesToAskAbout(const char* countText, int listedFiles);

/// One entry of a file list. The name is missing if the answer has none at or after the entry; it
/// may also be the next entry's, since the search does not stop at the semicolon.
struct ListEntry
{
    std::optional<std::string_view> name; ///< Part of the answer.
};

/// Walks a file list, however long, in linear time.
class FileListWalk
{
public:
    /// `answer` outlives the walk and the names that it hands out.
    explicit FileListWalk(const char* answer);

    /// Returns the next entry; none at a carriage return at the start of an entry and at the end of
    /// the answer.
    std::optional<ListEntry> next();

private:
    void findName();

    const char* m_entry;                    // where the next entry begins
    std::optional<std::string_view> m_name; // the first one whose tag is at or after it
};

} // namespace card
