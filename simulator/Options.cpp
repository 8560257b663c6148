#include "simulator/Options.h"

#include "simulator/ControlSocket.h"
#include "simulator/Text.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace simulator {

bool parseUnsigned(const std::string& text, std::uint64_t& number)
{
    const char* last = text.data() + text.size();
    std::uint64_t parsed = 0;
    const auto [end, error] = std::from_chars(text.data(), last, parsed);
    if (text.empty() || error != std::errc() || end != last) {
        return false;
    }
    number = parsed;
    return true;
}

bool parseSize(const std::string& text, std::uint64_t& size)
{
    std::uint64_t unit = 1;
    if (!text.empty()) {
        unit = text.back() == 'k' ? 1'024 : text.back() == 'M' ? 1'048'576 : 1;
    }
    std::uint64_t number = 0;
    if (!parseUnsigned(text.substr(0, text.size() - (unit == 1 ? 0 : 1)), number) ||
        number > std::numeric_limits<std::uint64_t>::max() / unit) {
        return false;
    }
    size = number * unit;
    return true;
}

namespace {

using Takes = OptionRow::Takes;

bool parseHeartbeat(const std::string& text, Milliseconds& heartbeat)
{
    std::uint64_t milliseconds = 0;
    const bool fine =
        parseUnsigned(text, milliseconds) && milliseconds >= 5 && milliseconds <= 86'400'000;
    heartbeat = Milliseconds(static_cast<long>(milliseconds));
    return fine;
}

auto nonEmpty(std::string Options::*target)
{
    return [target](Options& options, const std::string& value) {
        return !(options.*target = value).empty();
    };
}

/// Returns a function that stores an action and the form of its output: the first form unless
/// another is named.
auto printing(Options::Action wanted, std::vector<std::string> forms)
{
    return [wanted, forms](Options& options, const std::string& value) {
        options.action = wanted;
        options.form = value.empty() ? forms.front() : value;
        return std::find(forms.begin(), forms.end(), options.form) != forms.end();
    };
}

auto flag(bool Options::*target)
{
    return [target](Options& options, const std::string&) { return options.*target = true; };
}

} // namespace

// NOLINTNEXTLINE(readability-function-size): one table
const std::vector<OptionRow>& optionRows()
{
    static const std::vector<OptionRow> rows = {
        {"--card", Takes::Value, "DIR",
         "the camera's card holds the files of this folder (read only)",
         nonEmpty(&Options::cardFolder)},
        {"--sample", Takes::OptionalValue, "boundary|dive",
         "the card holds made-up recordings: eleven from 500 bytes to 64 MB (boundary, the "
         "default) "
         "or nine of a diving trip",
         [](Options& options, const std::string& v) {
             options.sampleGiven = true;
             options.sample = v == "dive" ? Sample::Dive : Sample::Boundary;
             return v.empty() || v == "dive" || v == "boundary";
         }},
        {"--sample-to", Takes::Value, "DIR",
         "write the sample card's recordings to DIR, to compare downloads with; exit afterwards "
         "unless --sample is given as well",
         nonEmpty(&Options::sampleFolder)},
        {"--seed", Takes::Value, "NUMBER",
         "seed for the sample card's contents and for random faults (default 1)",
         [](Options& options, const std::string& v) { return parseUnsigned(v, options.seed); }},
        {"--versions", Takes::Value, "LIST",
         "hardware type, hardware, software, protocol and bootloader version (default "
         "7,300,600,100,10)",
         [](Options& options, const std::string& v) { return parseVersions(v, options.versions); }},
        {"--rate", Takes::Value, "BYTES",
         "send recordings at this rate in bytes per second, such as 500k (default: no limit)",
         [](Options& options, const std::string& v) { return parseSize(v, options.rate); }},
        {"--heartbeat", Takes::Value, "MS",
         "milliseconds from one heartbeat to the next (default 1000)",
         [](Options& options, const std::string& v) {
             return parseHeartbeat(v, options.heartbeat);
         }},
        {"--fault", Takes::Value, "NAME[@WHEN][=VALUE]",
         "switch a fault on; may be repeated. WHEN limits it to requests or connections by their "
         "number (3, 3-5, 3-) or by chance (10%)",
         [](Options& options, const std::string& v) {
             options.faults.push_back(v);
             return true;
         }},
        {"--list-faults", Takes::OptionalValue, "text|json|markdown|man|words",
         "print the faults and exit; as text unless another form is named",
         printing(Options::Action::ListFaults, {"text", "json", "markdown", "man", "words"})},
        {"--scenario", Takes::Value, "FILE",
         "change faults and more during the run, according to the steps in FILE",
         nonEmpty(&Options::scenario)},
        {"--speed", Takes::Value, "FACTOR",
         "factor by which the time of the scenario passes faster (default 1)",
         [](Options& options, const std::string& v) {
             return parseUnsigned(v, options.speed) && options.speed >= 1 &&
                    options.speed <= 1'000'000;
         }},
        {"--journal", Takes::Value, "FILE",
         "write a journal of connections, bytes, requests and control lines to FILE",
         nonEmpty(&Options::journal)},
        {"--journal-full", Takes::Nothing, "",
         "write all bytes to the journal, including those of recordings",
         flag(&Options::journalFull)},
        {"--replay", Takes::Value, "FILE",
         "replay a recorded run; FILE is a journal or a packet capture",
         nonEmpty(&Options::replay)},
        {"--control", Takes::Value, "PATH",
         "also read control lines from a Unix socket with this path, which only you can use",
         nonEmpty(&Options::controlSocket)},
        {"--send", Takes::ValueAndRest, "PATH LINE...",
         "send control lines to the simulator at this socket, print its answers and exit",
         [](Options& options, const std::string& v) {
             options.action = Options::Action::Send;
             return !(options.controlSocket = v).empty();
         }},
        {"--exit-with-stdin", Takes::Nothing, "", "exit when standard input ends",
         flag(&Options::exitWithStdin)},
        {"--help", Takes::OptionalValue, "text|man|man-lines|words|lines",
         "print this text and exit; -h is the same",
         printing(Options::Action::Help, {"text", "man", "man-lines", "words", "lines"})},
        {"--version", Takes::Nothing, "", "print the version and exit",
         printing(Options::Action::Version, {"text"})},
    };
    return rows;
}

namespace {

const OptionRow* findOption(const std::string& name)
{
    const auto& rows = optionRows();
    const auto row = std::find_if(rows.begin(), rows.end(), [&name](const OptionRow& each) {
        return each.name == (name == "-h" ? "--help" : name);
    });
    return row == rows.end() ? nullptr : &*row;
}

std::string unknownArgument(const std::string& argument)
{
    std::vector<std::string> names;
    for (const OptionRow& row : optionRows()) {
        names.push_back(row.name);
    }
    return "unknown argument " + argument +
           didYouMean(argument.substr(0, argument.find('=')), names);
}

std::string checkSending(const Options& options)
{
    if (options.controlSocket.size() > longestSocketPath) {
        return "a socket's path may have " + std::to_string(longestSocketPath) + " bytes, not " +
               std::to_string(options.controlSocket.size()) + ": " + options.controlSocket;
    }
    if (options.action != Options::Action::Send) {
        return {};
    }
    const auto isWrong = [](const std::string& line) {
        return line.find('\n') != std::string::npos ||
               line.find_first_not_of(" \t\r") == std::string::npos;
    };
    if (options.lines.empty() || std::any_of(options.lines.begin(), options.lines.end(), isWrong)) {
        return "--send needs control lines, each an argument of its own";
    }
    return {};
}

std::string checkTogether(Options& options)
{
    if (std::string error = checkSending(options); !error.empty()) {
        return error;
    }
    if (!options.cardFolder.empty() && (options.sampleGiven || !options.sampleFolder.empty())) {
        return "--card and the sample card exclude each other";
    }
    if (!options.replay.empty() && (!options.cardFolder.empty() || options.sampleGiven ||
                                    !options.faults.empty() || !options.scenario.empty())) {
        return "--replay excludes --card, --sample, --fault and --scenario";
    }
    if (options.journalFull && options.journal.empty()) {
        return "--journal-full needs --journal";
    }
    if (options.action == Options::Action::Run && !options.sampleFolder.empty() &&
        !options.sampleGiven) {
        options.action = Options::Action::WriteSample;
    }
    return {};
}

} // namespace

std::string parseOptions(const std::vector<std::string>& arguments, Options& options)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::size_t equals = arguments[i].find('=');
        const bool joined = equals != std::string::npos;
        const OptionRow* option = findOption(arguments[i].substr(0, equals));
        if (!option || (joined && option->takes == Takes::Nothing)) {
            return unknownArgument(arguments[i]);
        }
        std::string value = joined ? arguments[i].substr(equals + 1) : std::string();
        if ((option->takes == Takes::Value || option->takes == Takes::ValueAndRest) && !joined) {
            if (++i == arguments.size()) {
                return option->name + " needs a value";
            }
            value = arguments[i];
        }
        if (!option->store(options, value)) {
            return option->name + " does not take \"" + value + "\"";
        }
        if (option->takes == Takes::ValueAndRest) {
            options.lines.assign(arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                                 arguments.end());
            break;
        }
    }
    return checkTogether(options);
}

} // namespace simulator
