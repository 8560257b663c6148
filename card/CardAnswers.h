// Reading the camera's answers. All of them are C strings: whatever follows a zero byte is not
// looked at, and nothing is read behind it.
#pragma once

#include "card/NameTable.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace card {

constexpr char countStart[] = "=\"";
constexpr char createStart[] = "create=\"";
constexpr char sizeStart[] = "size=\"";
constexpr char timeStart[] = "time=\"";
constexpr char valueEnd[] = "\";";

/// The text between the first `left` and the first `right` behind it, if both are there.
std::optional<std::string_view> textBetween(const char* answer, const char* left,
                                            const char* right);

/// A zeroed buffer that holds any text of the answer with its terminating zero, and never less than
/// the 32 bytes that the camera's own texts need.
std::vector<char> scratchFor(std::string_view answer);

/// Value of the leading decimal digits with their sign, 0 when there are none. A number too large
/// for an int keeps its low 32 bits.
int leadingNumber(const char* text);

/// For how many files to ask the details: the count as the camera told it, 0 if that is negative or
/// no number. A count beyond the name table or beyond an int is no count but an older text (the
/// count is looked for in everything received since the last emptying, and a creation time reads as
/// a number of fourteen digits); the files just listed are asked about then.
int filesToAskAbout(const char* countText, int listedFiles);

/// At most so many rows are read: the row number is a signed byte.
constexpr int rowLimit = 128;

/// Reads a file list into the table from slot 0 on and returns the rows' texts, each as its slot
/// read when the row was made. Stops at a carriage return at the start of an entry, at the end of
/// the answer, and at rowLimit. An entry without a name makes a row all the same, with the older
/// text of its slot; its name may also be found in the next entry, since the search does not stop
/// at the semicolon.
std::vector<std::string> readFileList(const char* answer, NameTable& names);

} // namespace card
