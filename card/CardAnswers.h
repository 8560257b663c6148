// Parses the camera's answers. They are C strings: everything after a zero byte is ignored and
// never read. CardCommands.h describes their grammar.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace card {

/// Returns the text between the first `left` and the first `right` after it, or nothing if a marker
/// is missing.
std::optional<std::string_view> textBetween(const char* answer, const char* left,
                                            const char* right);

/// Copies the text that textBetween() returns, with a terminating zero, into `buffer`, which must
/// be at least as large as `answer`, and returns the length of that text. Returns 0 and writes
/// nothing if a marker is missing.
int copyTextBetween(const char* answer, char* buffer, const char* left, const char* right);

/// Returns a zeroed buffer with room for any part of the answer and a terminating zero, but at
/// least for the 32 characters that writeNumber() needs.
std::vector<char> scratchFor(std::string_view answer);

/// Returns the number of files to query for details: the number at the start of `countText`, or 0
/// if that number is negative or missing. Returns `listedFiles` if the number exceeds the capacity
/// of the name table or is below the range of int. Such a number is not the camera's count: the
/// window searches for the count in the previous answer, too, and may find a creation time there,
/// which has fourteen digits.
int filesToAskAbout(const char* countText, int listedFiles);

/// One entry of a file list. The search for its name does not stop at a semicolon, so an entry
/// without a name gets the next name in the answer, or none if no name follows.
struct ListEntry
{
    std::optional<std::string_view> name; ///< Points into the answer.
};

/// A traversal of a file list of any length, in linear time.
class FileListWalk
{
public:
    /// `answer` must outlive this object and the names it returns.
    explicit FileListWalk(const char* answer);

    /// Returns the next entry, or nothing at the end of the answer or at a carriage return in place
    /// of an entry.
    std::optional<ListEntry> next();

private:
    void findName();

    const char* m_entry;                    // start of the next entry
    std::optional<std::string_view> m_name; // the first name whose tag is at or after m_entry
};

} // namespace card
