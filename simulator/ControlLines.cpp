#include "simulator/ControlLines.h"

#include "simulator/FaultTable.h"
#include "simulator/Options.h"
#include "simulator/Simulator.h"
#include "simulator/Text.h"

#include <algorithm>
#include <charconv>

namespace simulator {

namespace {

using Run = std::function<ControlAnswer(Simulator&)>;

/// One kind of control line.
struct Row
{
    const char* word;
    const char* arguments;
    const char* effect;
    /// Parses the arguments and sets `run`, which executes the line. Returns an error text, empty
    /// on success.
    // cppcheck-suppress unusedStructMember; parseControlLine() calls it
    std::string (*parse)(const std::string& arguments, Run& run);
};

constexpr std::size_t longestSend = 100'000;

bool fromHex(const std::string& text, std::string& bytes)
{
    if (text.empty() || text.size() % 2 != 0 || text.size() / 2 > longestSend) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); i += 2) {
        unsigned byte = 0;
        const char* digits = text.data() + i;
        const auto [end, error] = std::from_chars(digits, digits + 2, byte, 16);
        if (error != std::errc() || end != digits + 2) {
            return false;
        }
        bytes += static_cast<char>(byte);
    }
    return true;
}

std::string parseFault(const std::string& arguments, Run& run)
{
    run = [arguments](Simulator& vehicle) { return ControlAnswer{vehicle.setFault(arguments)}; };
    return FaultTable().set(arguments, TimePoint());
}

std::string parseClear(const std::string& arguments, Run& run)
{
    run = [arguments](Simulator& vehicle) { return ControlAnswer{vehicle.clearFault(arguments)}; };
    return FaultTable().clear(arguments);
}

std::string parseDrop(const std::string& arguments, Run& run)
{
    run = [arguments](Simulator& vehicle) {
        vehicle.drop(arguments);
        return ControlAnswer{};
    };
    return arguments == "control" || arguments == "ground" || arguments == "camera"
               ? std::string()
               : "drop takes control, ground or camera";
}

std::string parseSend(const std::string& arguments, Run& run)
{
    const std::size_t space = arguments.find(' ');
    const std::string name = arguments.substr(0, space);
    std::string bytes;
    if ((name != "control" && name != "ground") || space == std::string::npos ||
        !fromHex(arguments.substr(space + 1), bytes)) {
        return "send takes control or ground, then an even number of hex digits";
    }
    run = [name, bytes](Simulator& vehicle) {
        vehicle.send(name, bytes);
        return ControlAnswer{};
    };
    return {};
}

std::string parseVersionsLine(const std::string& arguments, Run& run)
{
    Versions versions{};
    if (!parseVersions(arguments, versions)) {
        return "versions takes five numbers, like 7,300,600,100,10";
    }
    run = [versions](Simulator& vehicle) {
        vehicle.changeVersions(versions);
        return ControlAnswer{};
    };
    return {};
}

std::string parseRate(const std::string& arguments, Run& run)
{
    std::uint64_t rate = 0;
    if (!parseSize(arguments, rate)) {
        return "rate takes a number of bytes per second";
    }
    run = [rate](Simulator& vehicle) {
        vehicle.changeRate(rate);
        return ControlAnswer{};
    };
    return {};
}

std::string noArguments(const std::string& arguments)
{
    return arguments.empty() ? std::string() : "nothing may follow, not \"" + arguments + "\"";
}

template <ControlAnswer (Simulator::*member)()>
std::string parseBare(const std::string& arguments, Run& run)
{
    // cppcheck-suppress constParameter; the member function modifies the vehicle
    run = [](Simulator& vehicle) { return (vehicle.*member)(); };
    return noArguments(arguments);
}

std::string parseHelp(const std::string& arguments, Run& run)
{
    run = [](Simulator&) { return ControlAnswer{{}, {}, controlLinesHelp()}; };
    return noArguments(arguments);
}

constexpr Row rows[] = {
    {"fault", "NAME[@WHEN][=VALUE]", "switches a fault on, or gives it another value", parseFault},
    {"clear", "NAME|all", "switches one fault off, or all", parseClear},
    {"faults", "", "shows the faults that are on", parseBare<&Simulator::showFaults>},
    {"drop", "control|ground|camera", "closes the open connections of the device", parseDrop},
    {"versions", "LIST", "changes the versions and reports them at once", parseVersionsLine},
    {"rate", "BYTES", "changes the rate of recordings requested from now on", parseRate},
    {"send", "control|ground HEX", "sends these bytes on every open connection", parseSend},
    {"card", "", "shows the recordings on the card", parseBare<&Simulator::showCard>},
    {"reload", "", "restores the card as it was at the start", parseBare<&Simulator::reload>},
    {"connections", "", "shows the number of open connections",
     parseBare<&Simulator::showConnections>},
    {"status", "", "shows the state of the vehicle", parseBare<&Simulator::showStatus>},
    {"help", "", "shows this list", parseHelp},
    {"quit", "", "ends the simulator", parseBare<&Simulator::quit>},
};

std::string trimmed(const std::string& text)
{
    constexpr const char* spaces = " \t\r";
    const std::size_t start = text.find_first_not_of(spaces);
    return start == std::string::npos
               ? std::string()
               : text.substr(start, text.find_last_not_of(spaces) - start + 1);
}

std::string unknownWord(const std::string& word)
{
    std::string meant;
    if (findFault(word.substr(0, word.find('=')))) {
        meant = "; did you mean \"fault " + word + "\"?";
    } else {
        std::vector<std::string> words;
        for (const Row& row : rows) {
            words.emplace_back(row.word);
        }
        meant = didYouMean(word, words);
    }
    return "no control line begins with \"" + word + "\"" + meant + " (--help shows all)";
}

} // namespace

bool isControlWord(const std::string& word)
{
    return std::any_of(std::begin(rows), std::end(rows),
                       [&word](const Row& row) { return word == row.word; });
}

ControlLine parseControlLine(const std::string& text)
{
    ControlLine line{trimmed(text), {}};
    const std::size_t space = line.text.find_first_of(" \t");
    const std::string word = line.text.substr(0, space);
    const std::string arguments =
        space == std::string::npos ? std::string() : trimmed(line.text.substr(space));
    line.text = word + (arguments.empty() ? "" : " ") + arguments;
    const auto* const row = std::find_if(std::begin(rows), std::end(rows),
                                         [&word](const Row& each) { return word == each.word; });
    line.error = row == std::end(rows) ? unknownWord(word) : row->parse(arguments, line.run);
    return line;
}

std::vector<std::string> controlLinesHelp()
{
    std::vector<std::string> lines;
    for (const Row& row : rows) {
        std::string line =
            std::string("  ") + row.word + (*row.arguments ? " " : "") + row.arguments;
        line.resize(std::max<std::size_t>(line.size() + 2, 30), ' ');
        lines.push_back(line + row.effect);
    }
    return lines;
}

} // namespace simulator
