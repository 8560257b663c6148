#include "simulator/FaultListing.h"

#include "simulator/Fault.h"
#include "simulator/Text.h"

#include <array>
#include <functional>
#include <string_view>

namespace simulator {

namespace {

constexpr std::size_t width = 100;
constexpr std::size_t resultColumn = 30;
/// Maximum length of a default shown in full; of a longer one, the beginning and the length are
/// shown.
constexpr std::size_t longestPreset = 40;
/// Maximum length of a list of words on the Markdown page. In place of a longer one, the page
/// refers to --list-faults.
constexpr std::size_t longestWords = 40;

/// A heading of the list. The headings below are in the order of FaultGroup.
struct Heading
{
    const char* word;  ///< in JSON
    const char* title; ///< in text, Markdown and the manual page
};

constexpr std::array<Heading, 10> headings = {{
    {"scope", "Which devices and requests the other faults act on"},
    {"reach", "Reaching a device"},
    {"frames", "Frames of the modules"},
    {"answers", "Answers of the camera, whatever the request"},
    {"count", "The count"},
    {"card", "The card"},
    {"list", "The list"},
    {"names", "Names of recordings"},
    {"details", "The details"},
    {"changes", "Delete and format"},
}};

const Heading& heading(FaultGroup group)
{
    return headings[static_cast<std::size_t>(group)];
}

/// Returns what NAME@3 counts; nullptr for faults that take no @.
const char* countedWord(FaultGroup group)
{
    switch (counted(group)) {
    case FaultCounts::Nothing:
        break;
    case FaultCounts::Connections:
        return "connections";
    case FaultCounts::Requests:
        return "requests";
    }
    return nullptr;
}

std::string_view deviceName(FaultDevice device)
{
    constexpr std::array<std::string_view, 3> names = {"all", "modules", "camera"};
    return names[static_cast<std::size_t>(device)];
}

std::string_view kindName(FaultKind kind)
{
    constexpr std::array<std::string_view, 5> names = {"none", "number", "size", "words", "text"};
    return names[static_cast<std::size_t>(kind)];
}

bool isNumber(const FaultValue& value)
{
    return value.kind == FaultKind::Number || value.kind == FaultKind::Size;
}

/// Returns "NAME", "NAME=VALUE" or "NAME[=VALUE]".
std::string spelled(const FaultDescription& row)
{
    if (row.value.kind == FaultKind::None) {
        return row.name;
    }
    return row.name +
           (row.value.preset.empty() ? "=" + row.value.name : "[=" + row.value.name + "]");
}

std::string shownPreset(const FaultValue& value)
{
    return value.preset.size() <= longestPreset
               ? value.preset
               : value.preset.substr(0, 3) + "... (" + std::to_string(value.preset.size()) +
                     " bytes)";
}

/// Returns a text such as "1 to 3600, default 10; once called other-name".
std::string details(const FaultDescription& row)
{
    std::string text;
    const auto add = [&text](const std::string& separator, const std::string& more) {
        text += text.empty() ? more : separator + more;
    };
    if (isNumber(row.value)) {
        add("", std::to_string(row.value.minimum) + " to " + std::to_string(row.value.maximum));
    }
    if (!row.value.preset.empty()) {
        add(", ", "default " + shownPreset(row.value));
    }
    if (!row.oldName.empty()) {
        add("; ", "once called " + row.oldName);
    }
    return text;
}

/// Calls `begin` with the title of each group, followed by `row` with each fault of the group.
void forEachFault(const std::function<void(const std::string& title)>& begin,
                  const std::function<void(const FaultDescription&)>& row)
{
    for (std::size_t i = 0; i < headings.size(); ++i) {
        const char* const counts = countedWord(static_cast<FaultGroup>(i));
        begin(headings[i].title + (counts ? std::string(" (@ counts ") + counts + ")" : ""));
        for (const FaultDescription& each : faultDescriptions()) {
            if (each.group == static_cast<FaultGroup>(i)) {
                row(each);
            }
        }
    }
}

/// Returns a text as code for a cell of a Markdown table.
std::string code(const std::string& text)
{
    std::string shown = "`";
    for (const char character : text) {
        shown += character == '|' ? std::string("\\|") : std::string(1, character);
    }
    return shown + "`";
}

std::string faultListText()
{
    std::string text;
    forEachFault(
        [&text](const std::string& title) { text += (text.empty() ? "" : "\n") + title + ":\n"; },
        [&text](const FaultDescription& row) {
            const std::string more = details(row);
            text +=
                columns("  " + spelled(row), row.result + (more.empty() ? "" : " (" + more + ")"),
                        resultColumn, width);
        });
    return text;
}

std::string faultListJson()
{
    std::string text;
    for (const FaultDescription& row : faultDescriptions()) {
        const auto field = [&text](const char* name, std::string_view value) {
            text += ", " + jsonString(name) + ": " + jsonString(value);
        };
        text += text.empty() ? "[\n" : ",\n";
        text += "  {\"name\": " + jsonString(row.name);
        if (!row.oldName.empty()) {
            field("oldName", row.oldName);
        }
        field("group", heading(row.group).word);
        if (const char* const counts = countedWord(row.group)) {
            field("counts", counts);
        }
        field("device", deviceName(row.device));
        field("kind", kindName(row.value.kind));
        if (row.value.kind != FaultKind::None) {
            field("value", row.value.name);
        }
        if (isNumber(row.value)) {
            text += ", \"minimum\": " + std::to_string(row.value.minimum) +
                    ", \"maximum\": " + std::to_string(row.value.maximum);
        }
        if (!row.value.preset.empty()) {
            field("default", row.value.preset);
        }
        field("result", row.result);
        text += "}";
    }
    return text + "\n]\n";
}

std::string faultListMarkdown()
{
    std::string text =
        "# Faults of the simulated vehicle\n"
        "\n"
        "The output of `belun-simulator --list-faults` as a page; [simulator/README.md]"
        "(../simulator/README.md#faults)\nexplains how to switch faults on. This page is "
        "generated by `belun-simulator --list-faults=markdown`:\nchange the table in "
        "`simulator/Faults.inc`, never this page.\n";
    forEachFault(
        [&text](const std::string& title) {
            text += "\n## " + title +
                    "\n\n| fault | acts on | what a client sees | value |\n|---|---|---|---|\n";
        },
        [&text](FaultDescription row) {
            std::string value;
            const auto add = [&value](const std::string& more) {
                value += (value.empty() ? "" : ", ") + more;
            };
            if (row.value.kind == FaultKind::Words && row.value.name.size() > longestWords) {
                row.value.name = "WORDS";
                add("words: see `--list-faults`");
            }
            if (isNumber(row.value)) {
                add(std::to_string(row.value.minimum) + " to " + std::to_string(row.value.maximum));
            }
            if (!row.value.preset.empty()) {
                add("default " + code(shownPreset(row.value)));
            }
            text += "| " + code(spelled(row));
            text += row.oldName.empty() ? "" : ", once " + code(row.oldName);
            text += " | " + std::string(deviceName(row.device)) + " | " + row.result + " | " +
                    value + " |\n";
        });
    return text;
}

std::string faultListManual()
{
    std::string text;
    forEachFault([&text](const std::string& title) { text += ".SS " + title + "\n"; },
                 [&text](const FaultDescription& row) {
                     const std::string more = details(row);
                     text += ".TP\n.B " + manualText(spelled(row)) + "\n" +
                             manualText(row.result + (more.empty() ? "" : " (" + more + ")")) +
                             "\n";
                 });
    return text;
}

std::string faultListWords()
{
    std::string text;
    for (const FaultDescription& row : faultDescriptions()) {
        text += row.name + "\n";
        if (row.value.kind == FaultKind::Words) {
            std::string words = row.value.name + "|";
            for (std::size_t end = words.find('|'); end != std::string::npos;
                 end = words.find('|')) {
                text += row.name + "=" + words.substr(0, end) + "\n";
                words.erase(0, end + 1);
            }
        }
    }
    return text;
}

} // namespace

std::string faultList(const std::string& form)
{
    return form == "json"       ? faultListJson()
           : form == "markdown" ? faultListMarkdown()
           : form == "man"      ? faultListManual()
           : form == "words"    ? faultListWords()
                                : faultListText();
}

} // namespace simulator
