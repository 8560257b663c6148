// The control lines on standard input: what each does and how it is answered.
#include "simulator/Simulator.h"

#include <charconv>
#include <functional>
#include <map>

namespace simulator {

namespace {

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

} // namespace

std::string Simulator::control(const std::string& line)
{
    const std::size_t space = line.find(' ');
    const std::string word = line.substr(0, space);
    const std::string rest = space == std::string::npos ? std::string() : line.substr(space + 1);
    const std::map<std::string, std::function<std::string()>> actions = {
        {"fault", [&] { return setFault(rest); }},
        {"clear", [&] { return clearFault(rest); }},
        {"drop", [&] { return drop(rest); }},
        {"send", [&] { return send(rest); }},
        {"versions", [&] { return changeVersions(rest); }},
        {"rate", [&] { return changeRate(rest); }},
        {"reload", [&] { return loadCard(); }},
        {"connections", [] { return std::string(); }},
        {"quit",
         [&] {
             m_ending = true;
             return std::string();
         }},
    };
    const auto action = actions.find(word);
    if (action == actions.end()) {
        return "error no control line begins with \"" + word + "\" (--help shows all)";
    }
    const std::string error = action->second();
    if (!error.empty()) {
        return "error " + error;
    }
    noteControl(line);
    return "ok " + line + (word == "connections" ? connectionCounts() : std::string());
}

void Simulator::noteControl(const std::string& line)
{
    m_journal.write(JournalLine("simulator", 0, "control").text("line", line));
}

std::string Simulator::setFault(const std::string& assignment)
{
    return m_faults.set(assignment, Clock::now());
}

std::string Simulator::clearFault(const std::string& name)
{
    return m_faults.clear(name);
}

Device* Simulator::device(const std::string& name)
{
    if (name == "control") {
        return &m_control;
    }
    if (name == "ground") {
        return &m_ground;
    }
    return name == "camera" ? &m_camera : nullptr;
}

std::string Simulator::drop(const std::string& name)
{
    Device* const found = device(name);
    if (!found) {
        return "drop takes control, ground or camera";
    }
    for (const auto& connection : found->connections()) {
        connection->close("dropped");
    }
    return {};
}

std::string Simulator::send(const std::string& arguments)
{
    const std::size_t space = arguments.find(' ');
    const std::string name = arguments.substr(0, space);
    std::string bytes;
    if ((name != "control" && name != "ground") || space == std::string::npos ||
        !fromHex(arguments.substr(space + 1), bytes)) {
        return "send takes control or ground, then an even number of hex digits";
    }
    for (const auto& connection : device(name)->connections()) {
        static_cast<ModuleConnection&>(*connection).sendRaw(bytes);
    }
    return {};
}

std::string Simulator::changeVersions(const std::string& text)
{
    if (!parseVersions(text, m_controlSettings.versions)) {
        return "versions takes five numbers, like 7,300,600,100,10";
    }
    for (const auto& connection : m_control.connections()) {
        static_cast<ModuleConnection&>(*connection).reportVersions();
    }
    return {};
}

std::string Simulator::changeRate(const std::string& text)
{
    return parseUnsigned(text, m_cameraState.rate) ? std::string()
                                                   : "rate takes a number of bytes per second";
}

std::string Simulator::connectionCounts() const
{
    return " control=" + std::to_string(m_control.connections().size()) +
           " ground=" + std::to_string(m_ground.connections().size()) +
           " camera=" + std::to_string(m_camera.connections().size());
}

} // namespace simulator
