// Fuzzes what belun-verify reads from the camera's answers about its card.
//
// Input: an answer, read as a count, as a list and as details.
#include "tests/fuzz/Require.h"
#include "verify/CardReader.h"
#include "verify/Numbers.h"

#include <algorithm>
#include <limits>

namespace {

void judgeCount(const std::string& answer)
{
    const auto count = verify::readCount(answer);
    if (count) {
        fuzz::require(verify::decimalNumber(count->text) == count->number,
                      "the count is the number that its text is");
        fuzz::require(answer.find("=\"" + count->text + "\";") != std::string::npos,
                      "the text of the count is in the answer, between the markers");
    }
}

void judgeNames(const std::string& answer)
{
    const std::string list = answer.c_str(); // up to the first zero byte
    const auto names = verify::readNames(answer);
    if (!names) {
        const std::size_t last = list.rfind(";\r");
        fuzz::require(list.empty() || list[0] != '\r', "an empty list has an end");
        fuzz::require(last == std::string::npos || list.find(';') != std::string::npos,
                      "a list without an end is none");
        return;
    }
    // One name for each semicolon before the end, taken from the text before that semicolon.
    std::size_t start = 0;
    for (const std::string& name : *names) {
        const std::size_t end = list.find(';', start);
        fuzz::require(end != std::string::npos, "every entry has its semicolon");
        const std::string entry = list.substr(start, end - start);
        const std::size_t tag = entry.find("ZEPNA/");
        fuzz::require(name == (tag == std::string::npos ? "" : entry.substr(tag + 6)),
                      "an entry has the name in it, or none");
        start = end + 1;
    }
    fuzz::require(start < list.size() && list[start] == '\r', "the list ends at its end marker");
}

void judgeSize(const std::string& answer)
{
    const auto size = verify::readSize(answer);
    if (size) {
        fuzz::require(*size <= std::uint64_t(std::numeric_limits<std::int64_t>::max()),
                      "a size fits into 64 signed bits");
        fuzz::require(answer.find("size=\"") != std::string::npos, "a size has its key");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string answer = fuzz::textOf(data, size);
    judgeCount(answer);
    judgeNames(answer);
    judgeSize(answer);
    return 0;
}
