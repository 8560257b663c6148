#include "simulator/Options.h"

#include <charconv>
#include <functional>
#include <map>

namespace simulator {

bool parseUnsigned(const std::string& text, std::uint64_t& number)
{
    const char* last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    return !text.empty() && error == std::errc() && end == last;
}

namespace {

using PlainOptions = std::map<std::string, std::function<void()>>;
using ValuedOptions = std::map<std::string, std::function<bool(const std::string&)>>;

PlainOptions plainOptions(Options& options, bool& sample)
{
    return {
        {"--help", [&] { options.action = Options::Action::Help; }},
        {"--version", [&] { options.action = Options::Action::Version; }},
        {"--list-faults", [&] { options.action = Options::Action::ListFaults; }},
        {"--sample", [&] { sample = true; }},
        {"--exit-with-stdin", [&] { options.exitWithStdin = true; }},
    };
}

bool parseHeartbeat(const std::string& text, Milliseconds& heartbeat)
{
    std::uint64_t milliseconds = 0;
    const bool fine =
        parseUnsigned(text, milliseconds) && milliseconds >= 5 && milliseconds <= 86'400'000;
    heartbeat = Milliseconds(static_cast<long>(milliseconds));
    return fine;
}

/// Each returns whether the option takes the value.
ValuedOptions valuedOptions(Options& options)
{
    const auto nonEmpty = [](std::string& target) {
        return [&target](const std::string& value) { return !(target = value).empty(); };
    };
    return {
        {"--card", nonEmpty(options.cardFolder)},
        {"--sample-to", nonEmpty(options.sampleFolder)},
        {"--journal", nonEmpty(options.journal)},
        {"--seed", [&](const std::string& v) { return parseUnsigned(v, options.seed); }},
        {"--rate", [&](const std::string& v) { return parseUnsigned(v, options.rate); }},
        {"--versions", [&](const std::string& v) { return parseVersions(v, options.versions); }},
        {"--heartbeat", [&](const std::string& v) { return parseHeartbeat(v, options.heartbeat); }},
        {"--fault",
         [&](const std::string& v) {
             options.faults.push_back(v);
             return true;
         }},
    };
}

} // namespace

std::string parseOptions(const std::vector<std::string>& arguments, Options& options)
{
    bool sample = false;
    const PlainOptions plain = plainOptions(options, sample);
    const ValuedOptions valued = valuedOptions(options);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string name = arguments[i];
        if (const auto option = plain.find(name); option != plain.end()) {
            option->second();
            continue;
        }
        std::string value;
        const std::size_t equals = name.find('=');
        const bool joined = equals != std::string::npos;
        if (joined) {
            value = name.substr(equals + 1);
            name.resize(equals);
        }
        const auto option = valued.find(name);
        if (option == valued.end()) {
            return "unknown argument " + arguments[i];
        }
        if (!joined) {
            if (++i == arguments.size()) {
                return name + " needs a value";
            }
            value = arguments[i];
        }
        if (!option->second(value)) {
            return name + " does not take \"" + value + "\"";
        }
    }
    if (!options.cardFolder.empty() && (sample || !options.sampleFolder.empty())) {
        return "--card and the sample card exclude each other";
    }
    if (options.action == Options::Action::Run && !options.sampleFolder.empty() && !sample) {
        options.action = Options::Action::WriteSample;
    }
    return {};
}

std::string helpText()
{
    return "Usage: belun-simulator [OPTION]...\n"
           "Plays the vehicle's control module (192.168.1.149:5000), ground module\n"
           "(192.168.1.148:5000) and camera (192.168.1.120:80), inside a private network only.\n"
           "Prints \"belun-simulator ready\" once it can be reached.\n"
           "\n"
           "  --card DIR          the camera's card holds the files of this folder (read only)\n"
           "  --sample            the card holds eleven made-up recordings (the default)\n"
           "  --sample-to DIR     write these recordings into DIR; without --sample that is all\n"
           "  --seed NUMBER       other contents for made-up recordings (default 1)\n"
           "  --versions LIST     hardware type, hardware, software, protocol and bootloader\n"
           "                      version (default 7,300,600,100,10)\n"
           "  --rate BYTES        send recordings at so many bytes a second (default: no limit)\n"
           "  --heartbeat MS      milliseconds from heartbeat to heartbeat (default 1000)\n"
           "  --fault NAME[=VALUE]  switch a fault on; may be repeated\n"
           "  --list-faults       tell what faults there are and end\n"
           "  --journal FILE      write a line for every connection, frame and request\n"
           "  --exit-with-stdin   end when standard input ends\n"
           "  --help, --version   tell and end\n"
           "\n"
           "While it runs, lines on standard input steer it, each answered by \"ok ...\" or\n"
           "\"error ...\":\n"
           "  fault NAME[=VALUE]    clear NAME    clear all    drop control|ground|camera\n"
           "  versions LIST         rate BYTES    send control|ground HEX\n"
           "  connections           reload        quit\n"
           "\n"
           "Exit status: 0 ended as asked, 1 cannot listen or read, 2 wrong arguments,\n"
           "3 not in a private network.\n";
}

} // namespace simulator
