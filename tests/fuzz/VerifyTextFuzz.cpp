// Fuzzes the names of the card in belun-verify's report: on a terminal, and as JSON.
//
// Input: a name.
#include "tests/fuzz/Require.h"
#include "verify/Json.h"
#include "verify/ShownText.h"

#include <algorithm>
#include <string_view>

namespace {

bool isPlain(const std::string& text)
{
    std::string_view rest = text;
    while (!rest.empty()) {
        char32_t letter = 0;
        const int length = verify::decodeUtf8(rest, letter);
        if (length == 0 || verify::isControl(letter)) {
            return false;
        }
        rest.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

/// Undoes the escapes of shownText().
std::string read(std::string_view shown)
{
    std::string text;
    while (!shown.empty()) {
        if (shown[0] != '\\') {
            text += shown[0];
            shown.remove_prefix(1);
        } else if (shown[1] == '\\') {
            text += '\\';
            shown.remove_prefix(2);
        } else if (shown[1] == 'x') {
            text += static_cast<char>(std::stoul(std::string(shown.substr(2, 2)), nullptr, 16));
            shown.remove_prefix(4);
        } else {
            const std::size_t end = shown.find('}');
            const unsigned long letter =
                std::stoul(std::string(shown.substr(3, end - 3)), nullptr, 16);
            const int more = letter < 0x80 ? 0 : letter < 0x800 ? 1 : letter < 0x10000 ? 2 : 3;
            constexpr unsigned char first[] = {0x00, 0xC0, 0xE0, 0xF0};
            text += static_cast<char>(first[more] | (letter >> (6 * more)));
            for (int i = more - 1; i >= 0; --i) {
                text += static_cast<char>(0x80 | ((letter >> (6 * i)) & 0x3F));
            }
            shown.remove_prefix(end + 1);
        }
    }
    return text;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string name = fuzz::textOf(data, size);
    for (const verify::Letters letters : {verify::Letters::Utf8, verify::Letters::Ascii}) {
        const std::string shown = verify::shownText(name, letters);
        fuzz::require(isPlain(shown), "nothing that a terminal obeys is shown");
        fuzz::require(read(shown) == name, "what is shown is that name and no other");
        fuzz::require(letters == verify::Letters::Utf8 ||
                          std::all_of(shown.begin(), shown.end(),
                                      [](char byte) { return byte >= ' ' && byte < 0x7F; }),
                      "ASCII is shown where nothing else can be");
    }
    verify::Recording recording;
    recording.name = name;
    fuzz::require(isPlain(verify::jsonLine(recording)),
                  "nothing that a terminal obeys is written as JSON");
    return 0;
}
