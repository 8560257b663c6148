#include "simulator/RecordedRun.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

namespace simulator {

namespace {

using Kind = ObservedEvent::Kind;
using ConnectionKey = std::pair<std::string, int>;

/// A builder that assigns the events to exchanges and connections.
class RunBuilder
{
public:
    explicit RunBuilder(RecordedRun& run) : m_run(&run) {}

    void add(const ObservedEvent& event)
    {
        if (event.device == "camera") {
            addToCamera(event);
        } else {
            addToModule(event);
        }
    }

private:
    /// A camera connection whose request may still be incomplete.
    struct CameraState
    {
        std::string request;
        std::size_t exchange = none;
        Microseconds start{};
    };
    /// A module's connection.
    struct ModuleState
    {
        std::size_t index = 0;
        Microseconds start{};
    };
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    void addToCamera(const ObservedEvent& event)
    {
        CameraState& state = m_camera[event.connection];
        if (event.kind == Kind::Received && state.exchange == none) {
            state.request += event.bytes;
            if (state.request.find("\r\n\r\n") != std::string::npos) {
                state.exchange = m_run->exchanges.size();
                state.start = event.time;
                m_run->exchanges.push_back({state.request.substr(0, state.request.find("\r\n"))});
            }
        } else if (isAction(event) && state.exchange != none) {
            m_run->exchanges[state.exchange].events.push_back(
                {event.kind, event.time - state.start, event.bytes, event.unknown});
        }
    }

    void addToModule(const ObservedEvent& event)
    {
        auto& connections = m_run->connections[event.device];
        const ConnectionKey key(event.device, event.connection);
        if (event.kind == Kind::Open || m_modules.count(key) == 0) {
            m_modules[key] = {connections.size(), event.time};
            connections.emplace_back();
        }
        if (isAction(event)) {
            const ModuleState& state = m_modules[key];
            connections[state.index].push_back(
                {event.kind, event.time - state.start, event.bytes, event.unknown});
        }
    }

    static bool isAction(const ObservedEvent& event)
    {
        return event.kind != Kind::Open && event.kind != Kind::Received;
    }

    RecordedRun* m_run;
    std::map<int, CameraState> m_camera;
    std::map<ConnectionKey, ModuleState> m_modules;
};

} // namespace

std::string readRecordedRun(const std::string& path, RecordedRun& run)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return path + ": " + std::strerror(errno);
    }
    const int first = file.peek();
    std::vector<ObservedEvent> events;
    std::string error =
        first == '{' ? readJournal(path, events, run) : readCapture(path, events, run);
    if (!error.empty()) {
        return error;
    }
    RunBuilder builder(run);
    for (const ObservedEvent& event : events) {
        builder.add(event);
    }
    if (run.exchanges.empty() && run.connections.empty()) {
        return path + ": there is no connection to a device of the vehicle in it";
    }
    return {};
}

} // namespace simulator
