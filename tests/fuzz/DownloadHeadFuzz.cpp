// Fuzzes parsing the head of an answer to a download.
//
// Input: the bytes from the camera.
#include "download/RecordingDownload.h"
#include "tests/fuzz/MemoryPeer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::string_view spaces = " \t\n\v\f\r";

/// Returns the end of the head: after the fourth carriage return or line feed in a row, ignoring
/// zero bytes, or the end of the text if there are never four in a row.
std::size_t endOfHead(std::string_view text)
{
    int run = 0;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char byte = text[index];
        if (byte != '\0') {
            run = byte == '\r' || byte == '\n' ? run + 1 : 0;
        }
        if (run == 4) {
            return index + 1;
        }
    }
    return text.size();
}

/// Finds the marker and returns the text from the next word to the end; empty if the marker or the
/// next word is missing.
std::string behindWord(const std::string& text, const char* marker)
{
    const std::size_t word = text.find(marker);
    const std::size_t wordEnd = text.find_first_of(spaces, word);
    const std::size_t value = text.find_first_not_of(spaces, wordEnd);
    const bool complete =
        word != std::string::npos && wordEnd != std::string::npos && value != std::string::npos;
    return complete ? text.substr(value) : "";
}

void judgeFields(const std::string& text)
{
    const fuzz::ExactCString head(text);
    const resp_header header = download::parseHead(head.get());
    const std::string status = behindWord(text, "HTTP/");
    fuzz::require(header.status_code == static_cast<int>(std::strtol(status.c_str(), nullptr, 10)),
                  "the status is the word after the protocol");
    const std::string length = behindWord(text, "Content-Length:");
    fuzz::require(header.content_length == std::strtoll(length.c_str(), nullptr, 10),
                  "the length is the word after its name");
    const std::string type = behindWord(text, "Content-Type:");
    fuzz::require(header.content_type == type.substr(0, type.find_first_of(spaces)).substr(0, 127),
                  "the type is the word after its name, truncated to its field");
    fuzz::require(header.file_name[0] == '\0', "the name is not filled");
}

void judgeReading(const std::string& text, fuzz::End end)
{
    download::ResponseHead head;
    sys::StoppableCalls calls;
    download::RecordingDownload reader(calls);
    fuzz::TextPeer peer(text, text.size(), end);
    fuzz::require(reader.readHead(head), "a short head does not outgrow the memory");
    fuzz::require(peer.received() == endOfHead(text),
                  "no byte of the body is consumed with the head");

    std::string expected = text.substr(0, endOfHead(text));
    expected.erase(std::remove(expected.begin(), expected.end(), '\0'), expected.end());
    fuzz::require(head.text() == expected, "the head is what was sent, without zero bytes");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = fuzz::textOf(data, size);
    judgeReading(text, fuzz::End::Closed);
    judgeReading(text, fuzz::End::Failed);
    judgeFields(text.c_str());
    return 0;
}
