// The output of --help in its forms.
#include "simulator/ControlLines.h"
#include "simulator/Options.h"
#include "simulator/Text.h"

namespace simulator {

namespace {

using Takes = OptionRow::Takes;

constexpr const char* introduction =
    "Usage: belun-simulator [OPTION]...\n"
    "Plays the vehicle's control module (192.168.1.149:5000), ground module\n"
    "(192.168.1.148:5000) and camera (192.168.1.120:80), inside a private network only.\n"
    "Prints \"belun-simulator ready\" once it can be reached.\n";

constexpr const char* controlLines =
    "While the simulator runs, it is controlled by lines on standard input or on the socket\n"
    "of --control. Each is answered with \"ok ...\" or \"error ...\"; its output comes first, in\n"
    "lines that begin with two spaces. The control lines are:\n";

constexpr const char* statuses =
    "Exit status: 0 ended on request; 1 cannot listen or read, a line of --send was answered\n"
    "with \"error ...\", or a request is not in the file of --replay; 2 wrong arguments;\n"
    "3 not in a private network.\n";

/// Returns a text such as "--card DIR" or "--list-faults[=text|json]".
std::string spelled(const OptionRow& row)
{
    switch (row.takes) {
    case Takes::Nothing:
        break;
    case Takes::Value:
    case Takes::ValueAndRest:
        return row.name + " " + row.value;
    case Takes::OptionalValue:
        return row.name + "[=" + row.value + "]";
    }
    return row.name;
}

std::string optionsText()
{
    constexpr std::size_t effectColumn = 24;
    constexpr std::size_t width = 80;
    std::string text;
    for (const OptionRow& row : optionRows()) {
        text += columns("  " + spelled(row), row.effect, effectColumn, width);
    }
    return text;
}

std::string optionsWords()
{
    std::string text;
    for (const OptionRow& row : optionRows()) {
        text += spelled(row) + "\n";
    }
    return text;
}

std::string controlWords()
{
    std::string text;
    for (const std::string& line : controlLinesHelp()) {
        text += line.substr(2, line.find(' ', 2) - 2) + "\n";
    }
    return text;
}

std::string controlManual()
{
    std::string text;
    for (const std::string& line : controlLinesHelp()) {
        const std::size_t end = line.find("  ", 2);
        text += ".TP\n.B " + manualText(line.substr(2, end - 2)) + "\n" +
                manualText(line.substr(line.find_first_not_of(' ', end))) + "\n";
    }
    return text;
}

std::string optionsManual()
{
    std::string text;
    for (const OptionRow& row : optionRows()) {
        text += ".TP\n.B " + manualText(spelled(row)) + "\n" + manualText(row.effect) + "\n";
    }
    return text;
}

} // namespace

std::string help(const std::string& form)
{
    if (form == "man") {
        return optionsManual();
    }
    if (form == "man-lines") {
        return controlManual();
    }
    if (form == "words") {
        return optionsWords();
    }
    if (form == "lines") {
        return controlWords();
    }
    std::string lines = controlLines;
    for (const std::string& line : controlLinesHelp()) {
        lines += line + "\n";
    }
    return std::string(introduction) + "\n" + optionsText() + "\n" + lines + "\n" + statuses;
}

} // namespace simulator
