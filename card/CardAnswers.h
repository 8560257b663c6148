// Parses the camera's answers. They are C strings: everything after a zero byte is ignored and
// never read. Their grammar is in CardCommands.h.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace card {

/// Returns the text between the first `left` and the first `right` after it, or nothing if a marker
/// is missing.
std::optional<std::string_view> textBetween(const char* answer, const char* left,
                                            const char* right);

/// Copies that text with a terminating zero into `buffer`, which has at least the size of `answer`,
/// and returns the length of the text. Returns 0 and writes nothing if a marker is missing.
int copyTextBetween(const char* answer, char* buffer, const char* left, const char* right);

/// Returns a zeroed buffer with room for any text of the answer and its terminating zero, but at
/// least the 32 bytes that writeNumber() needs.
std::vector<char> scratchFor(std::string_view answer);

/// Returns the number of files to query for details: the count stated by the camera, or 0 if it is
/// negative or not a number. If the count exceeds the name table or the range of an int, returns
/// the number of files just listed: the count is searched for in everything received since that
/// text was last cleared, so it may be something older, such as a creation time, a number of
/// fourteen digits.
int filesToAskAbout(const char* countText, int listedFiles);

/// One entry of a file list. Its name is the first one at or after the entry, because the search
/// does not stop at the semicolon: an entry without a name has the name of a later one. If none
/// follows, the name is missing.
struct ListEntry
{
    std::optional<std::string_view> name; ///< Points into the answer.
};

/// A walk over a file list of any length, in linear time.
class FileListWalk
{
public:
    /// `answer` must outlive this object and the names it returns.
    explicit FileListWalk(const char* answer);

    /// Returns the next entry, or nothing at the end of the answer and where an entry would start
    /// with a carriage return.
    std::optional<ListEntry> next();

private:
    void findName();

    const char* m_entry;                    // start of the next entry
    std::optional<std::string_view> m_name; // the first name whose tag is at or after m_entry
};

} // namespace card
