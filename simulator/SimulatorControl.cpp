// Executes control lines.
#include "simulator/Simulator.h"
#include "simulator/Text.h"

namespace simulator {

namespace {

constexpr std::size_t mostShown = 200;

std::string_view reachabilityText(Reachability reachability)
{
    switch (reachability) {
    case Reachability::Listening:
        return "listening";
    case Reachability::Unheard:
        return "not accepting";
    case Reachability::Refusing:
        return "refusing";
    case Reachability::Deaf:
        return "without power";
    }
    return {};
}

} // namespace

std::vector<std::string> Simulator::control(const std::string& text)
{
    const ControlLine line = parseControlLine(text);
    return line.text.empty() ? std::vector<std::string>() : carryOut(line);
}

std::vector<std::string> Simulator::carryOut(const ControlLine& line)
{
    ControlAnswer answer{line.error};
    if (answer.error.empty()) {
        answer = line.run(*this);
    }
    if (!answer.error.empty()) {
        return {"error " + answer.error};
    }
    noteControl(line.text);
    answer.details.push_back("ok " + line.text + answer.summary);
    return answer.details;
}

void Simulator::play(const std::vector<ControlLine>& steps)
{
    for (const ControlLine& step : steps) {
        for (const std::string& answer : carryOut(step)) {
            printLine("scenario: " + answer);
        }
    }
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

Device& Simulator::device(const std::string& name)
{
    return name == "control" ? m_control : name == "ground" ? m_ground : m_camera;
}

void Simulator::drop(const std::string& name)
{
    for (const auto& connection : device(name).connections()) {
        connection->close("dropped");
    }
}

void Simulator::send(const std::string& module, const std::string& bytes)
{
    for (const auto& connection : device(module).connections()) {
        connection->sendRaw(bytes);
    }
}

void Simulator::changeVersions(const Versions& versions)
{
    m_controlSettings.versions = versions;
    for (const auto& connection : m_control.connections()) {
        // Skips the connections of a replayed module, which reports the recorded versions.
        if (auto* const module = dynamic_cast<ModuleConnection*>(connection.get())) {
            module->reportVersions();
        }
    }
}

ControlAnswer Simulator::reload()
{
    return {loadCard()};
}

ControlAnswer Simulator::quit()
{
    m_ending = true;
    return {};
}

ControlAnswer Simulator::showConnections()
{
    return {{},
            " control=" + std::to_string(m_control.connections().size()) +
                " ground=" + std::to_string(m_ground.connections().size()) +
                " camera=" + std::to_string(m_camera.connections().size())};
}

ControlAnswer Simulator::showFaults()
{
    ControlAnswer answer;
    for (const std::string& fault : m_faults.list()) {
        answer.details.push_back("  " + fault);
    }
    return answer;
}

ControlAnswer Simulator::showCard()
{
    ControlAnswer answer;
    const auto& recordings = m_card.recordings();
    for (std::size_t i = 0; i < recordings.size() && i < mostShown; ++i) {
        const Recording& each = recordings[i];
        answer.details.push_back("  " + each.name + "  " + std::to_string(each.size) + " bytes  " +
                                 each.created + "  " + std::to_string(each.duration) + " s");
    }
    if (recordings.size() > mostShown) {
        answer.details.push_back("  and " + std::to_string(recordings.size() - mostShown) +
                                 " more");
    }
    return answer;
}

ControlAnswer Simulator::showStatus()
{
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_started).count();
    ControlAnswer answer;
    const auto add = [&answer](std::string name, const std::string& value) {
        answer.details.push_back(columns("  " + std::move(name), value, 14, 90));
        answer.details.back().pop_back();
    };
    add("running", std::to_string(seconds) + " s");
    for (const Device* each : {&m_control, &m_ground, &m_camera}) {
        add(each->name(), std::string(reachabilityText(each->reachability())) +
                              ", open connections: " + std::to_string(each->connections().size()));
    }
    add("requests", std::to_string(m_cameraState.exchanges) + " to the camera");
    add("downloads", std::to_string(m_downloads));
    add("card", std::to_string(m_card.recordings().size()) + " recordings");
    add("rate", m_cameraState.rate == 0 ? "no limit"
                                        : std::to_string(m_cameraState.rate) + " bytes a second");
    add("faults", std::to_string(m_faults.list().size()) + " on");
    if (!m_options.scenario.empty()) {
        add("scenario", std::to_string(m_scenario.stepsLeft()) + " steps left");
    }
    return answer;
}

} // namespace simulator
