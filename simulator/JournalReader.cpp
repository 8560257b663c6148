// Reads the journal that this program writes.
#include "simulator/RecordedRun.h"

#include <charconv>
#include <ctime>
#include <fstream>
#include <optional>

namespace simulator {

namespace {

using Kind = ObservedEvent::Kind;
using Fields = std::map<std::string, std::string>;

/// Removes a JSON string from the front and returns its value, or nothing if it is invalid.
/// Journals contain no code point above FF.
std::optional<std::string> takeString(std::string_view& text)
{
    if (text.empty() || text.front() != '"') {
        return std::nullopt;
    }
    text.remove_prefix(1);
    std::string value;
    while (!text.empty() && text.front() != '"') {
        if (text.front() != '\\') {
            value += text.front();
            text.remove_prefix(1);
            continue;
        }
        if (text.size() >= 6 && text[1] == 'u') {
            unsigned code = 0;
            const auto [end, error] = std::from_chars(text.data() + 2, text.data() + 6, code, 16);
            if (error != std::errc() || end != text.data() + 6 || code > 0xFF) {
                return std::nullopt;
            }
            value += static_cast<char>(code);
            text.remove_prefix(6);
        } else if (text.size() >= 2 && (text[1] == '"' || text[1] == '\\')) {
            value += text[1];
            text.remove_prefix(2);
        } else {
            return std::nullopt;
        }
    }
    if (text.empty()) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    return value;
}

/// Parses one line: an object whose values are strings or numbers.
std::optional<Fields> parseLine(std::string_view text)
{
    Fields fields;
    if (text.size() < 2 || text.front() != '{' || text.back() != '}') {
        return std::nullopt;
    }
    text = text.substr(1, text.size() - 2);
    while (!text.empty()) {
        const auto name = takeString(text);
        if (!name || text.empty() || text.front() != ':') {
            return std::nullopt;
        }
        text.remove_prefix(1);
        std::optional<std::string> value;
        if (!text.empty() && text.front() == '"') {
            value = takeString(text);
        } else {
            const std::size_t digits = text.find_first_not_of("0123456789");
            value = std::string(text.substr(0, digits));
            text.remove_prefix(value->size());
        }
        if (!value) {
            return std::nullopt;
        }
        fields[*name] = *value;
        if (!text.empty() && text.front() != ',') {
            return std::nullopt;
        }
        text.remove_prefix(text.empty() ? 0 : 1);
    }
    return fields;
}

/// Parses a time such as "2026-11-21T00:41:07.532442Z" and returns the microseconds since 1970.
std::optional<Microseconds> parseTime(const std::string& text)
{
    std::tm parts{};
    long micro = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%6ldZ", &parts.tm_year, &parts.tm_mon,
                    &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &parts.tm_sec, &micro) != 7) {
        return std::nullopt;
    }
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    return std::chrono::seconds(::timegm(&parts)) + Microseconds(micro);
}

bool fromHex(const std::string& text, std::string& bytes)
{
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        unsigned byte = 0;
        const auto [end, error] = std::from_chars(text.data() + i, text.data() + i + 2, byte, 16);
        if (error != std::errc() || end != text.data() + i + 2) {
            return false;
        }
        bytes += static_cast<char>(byte);
    }
    return text.size() % 2 == 0;
}

std::optional<Kind> kindOf(Fields& fields)
{
    const std::string& event = fields["event"];
    if (event == "open") {
        return Kind::Open;
    }
    if (event == "received") {
        return Kind::Received;
    }
    if (event == "sent") {
        return Kind::Sent;
    }
    if (event == "half-close") {
        return Kind::HalfClose;
    }
    if (event == "close" && fields["by"] == "device") {
        return fields["how"] == "reset" ? Kind::Reset : Kind::Close;
    }
    return std::nullopt;
}

/// Adds the event in a line if a replay needs it. Returns false if the text is not a line of a
/// journal.
bool addLine(const std::string& text, std::vector<ObservedEvent>& events, RecordedRun& run)
{
    auto fields = parseLine(text);
    const auto time = fields ? parseTime((*fields)["time"]) : std::nullopt;
    if (!time || (*fields)["event"].empty()) {
        return false;
    }
    const auto kind = kindOf(*fields);
    if (!kind) {
        return true;
    }
    ObservedEvent event{*kind, (*fields)["device"], 0, *time};
    const std::string& number = (*fields)["connection"];
    std::from_chars(number.data(), number.data() + number.size(), event.connection);
    if (!fromHex((*fields)["bytes"], event.bytes)) {
        return false;
    }
    if (const std::string& count = (*fields)["count"]; !count.empty()) {
        std::from_chars(count.data(), count.data() + count.size(), event.unknown);
        ++run.filledRuns;
        run.filledBytes += event.unknown;
    }
    events.push_back(std::move(event));
    return true;
}

} // namespace

std::string readJournal(const std::string& path, std::vector<ObservedEvent>& events,
                        RecordedRun& run)
{
    std::ifstream file(path);
    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        // A killed simulator may leave the last line unfinished.
        if (!addLine(text, events, run) && !file.eof()) {
            return path + ":" + std::to_string(number) + ": not a line of a journal";
        }
    }
    return {};
}

} // namespace simulator
