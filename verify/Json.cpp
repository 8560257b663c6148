#include "verify/Json.h"

#include "verify/ShownText.h"

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace verify {

namespace {

const char* word(Result result)
{
    switch (result) {
    case Result::SameSize:
        return "same-size";
    case Result::SameContent:
        return "same-content";
    case Result::Different:
        return "different";
    case Result::Shorter:
        return "shorter";
    case Result::Longer:
        return "longer";
    case Result::NotHere:
        return "not-on-computer";
    case Result::NotOnCard:
        return "not-on-card";
    case Result::Nowhere:
        return "nowhere";
    case Result::Unknown:
        break;
    }
    return "unknown";
}

const char* word(Reason reason)
{
    switch (reason) {
    case Reason::NoDetails:
        return "no-details";
    case Reason::NoContent:
        return "no-content";
    case Reason::LengthsDiffer:
        return "lengths-differ";
    case Reason::TwoEntries:
        return "two-entries";
    case Reason::NoName:
        return "no-name";
    case Reason::NotDownloadable:
        return "not-downloadable";
    case Reason::TooLarge:
        return "too-large";
    case Reason::Link:
        return "link";
    case Reason::Folder:
        return "folder";
    case Reason::NoFile:
        return "no-file";
    case Reason::NameTooLong:
        return "name-too-long";
    case Reason::FileError:
        return "file-error";
    case Reason::FileChanged:
        return "file-changed";
    case Reason::None:
        break;
    }
    return "";
}

const char* word(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Safe:
        return "safe";
    case Verdict::Empty:
        return "empty";
    case Verdict::NotSafe:
        return "not-safe";
    case Verdict::Unknown:
        break;
    }
    return "unknown";
}

/// A JSON object that is written member by member. Escapes more than JSON requires, namely all
/// characters for which isControl() is true, because reports are also read on terminals.
class Object
{
public:
    void text(const char* key, std::string_view value)
    {
        begin(key);
        m_text += '"';
        while (!value.empty()) {
            char32_t letter = 0;
            const int length = decodeUtf8(value, letter);
            add(length == 0 ? U'\uFFFD' : letter,
                value.substr(0, static_cast<std::size_t>(length)));
            value.remove_prefix(length == 0 ? 1 : static_cast<std::size_t>(length));
        }
        m_text += '"';
    }
    void number(const char* key, std::uint64_t value)
    {
        begin(key);
        m_text += std::to_string(value);
    }
    void number(const char* key, const std::optional<std::uint64_t>& value)
    {
        if (value) {
            number(key, *value);
        }
    }
    void truth(const char* key, bool value)
    {
        begin(key);
        m_text += value ? "true" : "false";
    }
    std::string finished() const { return "{" + m_text + "}"; }

private:
    void begin(const char* key)
    {
        m_text += m_text.empty() ? "\"" : ",\"";
        m_text.append(key).append("\":");
    }
    void add(char32_t letter, std::string_view bytes)
    {
        if (letter == U'"' || letter == U'\\') {
            m_text += '\\';
            m_text += static_cast<char>(letter);
        } else if (!isControl(letter) && !bytes.empty()) {
            m_text += bytes;
        } else if (letter < 0x10000) {
            unit(letter);
        } else {
            unit(0xD800 + ((letter - 0x10000) >> 10));
            unit(0xDC00 + ((letter - 0x10000) & 0x3FFU));
        }
    }
    void unit(char32_t value)
    {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(value & 0xFFFFU));
        m_text += escape;
    }

    std::string m_text;
};

std::string hexadecimal(const std::string& bytes)
{
    std::string digits;
    for (const char byte : bytes) {
        char two[3];
        std::snprintf(two, sizeof two, "%02x",
                      static_cast<unsigned>(static_cast<unsigned char>(byte)));
        digits += two;
    }
    return digits;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        char32_t letter = 0;
        const int length = decodeUtf8(text, letter);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

} // namespace

std::string jsonLine(const Recording& recording)
{
    Object object;
    object.text("type", "recording");
    object.text("name", recording.name);
    if (!isUtf8(recording.name)) {
        object.text("nameBytes", hexadecimal(recording.name));
    }
    object.text("result", word(recording.result));
    if (recording.reason != Reason::None) {
        object.text("reason", word(recording.reason));
    }
    object.truth("safe", recording.isSafe());
    object.number("cardBytes", recording.cardBytes);
    object.number("localBytes", recording.localBytes);
    object.number("firstDifference", recording.difference);
    return object.finished();
}

std::string jsonLine(const Summary& summary, const std::string& text, const std::string& failure)
{
    Object object;
    object.text("type", "summary");
    object.text("result", word(summary.verdict));
    object.number("status", static_cast<std::uint64_t>(statusOf(summary.verdict)));
    object.truth("contentsCompared", summary.contents);
    object.truth("onlyNamed", summary.named);
    object.truth("complete", summary.complete);
    object.truth("cardChanged", summary.changed);
    object.number("counted", summary.counted);
    object.number("listed", summary.listed);
    object.number("safe", summary.safe);
    object.number("notSafe", summary.notSafe.size());
    object.number("missingBytes", summary.missingBytes);
    object.number("freeBytes", summary.freeBytes);
    object.text("folder", summary.folder);
    object.text("text", text);
    if (!failure.empty()) {
        object.text("failure", failure);
    }
    return object.finished();
}

} // namespace verify
