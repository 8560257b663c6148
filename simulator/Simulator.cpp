#include "simulator/Simulator.h"

#include "simulator/SampleCard.h"
#include "simulator/Text.h"

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include <poll.h>
#include <unistd.h>

namespace simulator {

namespace {

constexpr std::uint16_t modulePort = 5000;
constexpr std::uint16_t cameraPort = 80;

using Replaying = std::optional<Replay>;

Device::Factory moduleFactory(Journal& journal, const FaultTable& faults,
                              const ModuleSettings& settings, Replaying& replay)
{
    return [&](FileDescriptor socket, ConnectionName name,
               TimePoint now) -> std::unique_ptr<Connection> {
        if (replay) {
            return std::make_unique<ReplayConnection>(std::move(socket), std::move(name), journal,
                                                      *replay, now);
        }
        return std::make_unique<ModuleConnection>(std::move(socket), std::move(name), journal,
                                                  faults, settings, now);
    };
}

Device::Factory cameraFactory(Journal& journal, CameraState& state, Replaying& replay)
{
    return [&](FileDescriptor socket, ConnectionName name,
               TimePoint now) -> std::unique_ptr<Connection> {
        if (replay) {
            return std::make_unique<ReplayConnection>(std::move(socket), std::move(name), journal,
                                                      *replay, now);
        }
        return std::make_unique<CameraConnection>(std::move(socket), std::move(name), journal,
                                                  state);
    };
}

} // namespace

Simulator::Simulator(Options options, Scenario scenario, std::optional<RecordedRun> replay)
    : m_options(std::move(options)), m_scenario(std::move(scenario)), m_faults(m_options.seed),
      m_replay(replay ? std::optional<Replay>(std::move(*replay)) : std::nullopt),
      m_answers(m_card, m_faults, m_options.seed),
      m_cameraState{&m_answers,
                    &m_faults,
                    m_options.rate,
                    0,
                    [this] { resetModules(); },
                    [this](std::uint64_t number) { play(m_scenario.dueAtExchange(number)); },
                    [this] { play(m_scenario.dueAfterDownload(++m_downloads)); }},
      m_controlSettings{true, m_options.heartbeat, m_options.versions},
      m_groundSettings{false, m_options.heartbeat, m_options.versions},
      m_control("control", "192.168.1.149", modulePort, m_faults, m_journal,
                moduleFactory(m_journal, m_faults, m_controlSettings, m_replay)),
      m_ground("ground", "192.168.1.148", modulePort, m_faults, m_journal,
               moduleFactory(m_journal, m_faults, m_groundSettings, m_replay)),
      m_camera("camera", "192.168.1.120", cameraPort, m_faults, m_journal,
               cameraFactory(m_journal, m_cameraState, m_replay))
{
}

std::string Simulator::start()
{
    const TimePoint now = Clock::now();
    if (!m_options.journal.empty()) {
        std::string error = m_journal.open(m_options.journal, m_options.journalFull);
        if (!error.empty()) {
            return error;
        }
    }
    for (const std::string& fault : m_options.faults) {
        std::string error = m_faults.set(fault, now);
        if (!error.empty()) {
            return error;
        }
        noteControl("fault " + fault);
    }
    std::string error = loadCard();
    if (error.empty() && !m_options.controlSocket.empty()) {
        error = m_controlSocket.open(m_options.controlSocket);
    }
    for (Device* each : {&m_control, &m_ground, &m_camera}) {
        if (error.empty()) {
            error = each->start(now);
        }
    }
    m_started = Clock::now();
    m_scenario.start(m_started);
    return error;
}

std::string Simulator::loadCard()
{
    Card card;
    if (m_options.cardFolder.empty()) {
        card = sampleCard(m_options.sample, m_options.seed);
    } else if (std::string error = readFolderCard(m_options.cardFolder, card); !error.empty()) {
        return error;
    }
    m_card = std::move(card);
    return {};
}

std::string Simulator::run(int signals)
{
    while (!m_ending) {
        std::vector<pollfd> descriptors = {{signals, POLLIN, 0},
                                           {m_inputOpen ? STDIN_FILENO : -1, POLLIN, 0}};
        for (const Device* each : {&m_control, &m_ground, &m_camera}) {
            each->addTo(descriptors);
        }
        m_controlSocket.addTo(descriptors);
        const int ready = ::poll(descriptors.data(), descriptors.size(), timeout(Clock::now()));
        if (ready < 0 && errno != EINTR) {
            return {};
        }
        if (descriptors[0].revents != 0) {
            return {};
        }
        if (descriptors[1].revents != 0) {
            readStandardInput();
        }
        m_controlSocket.read([this](const std::string& line) { return control(line); });
        const TimePoint now = Clock::now();
        endReboot(now);
        play(m_scenario.dueAt(now));
        for (Device* each : {&m_control, &m_ground, &m_camera}) {
            each->advance(descriptors, now);
        }
        m_controlSocket.flush();
        for (const std::string& reply : std::exchange(m_replies, {})) {
            printLine(reply);
        }
        if (m_replay && !m_replay->failure().empty()) {
            return m_replay->failure();
        }
    }
    return {};
}

int Simulator::timeout(TimePoint now) const
{
    TimePoint wake = m_scenario.nextDue();
    for (const Device* each : {&m_control, &m_ground, &m_camera}) {
        wake = std::min(wake, each->nextWake(now));
    }
    if (m_faults.active(Fault::Reboot)) {
        wake = std::min(wake, m_faults.since(Fault::Reboot) +
                                  std::chrono::seconds(*m_faults.number(Fault::Reboot)));
    }
    if (wake == never) {
        return -1;
    }
    const auto pause = std::chrono::ceil<Milliseconds>(std::max(wake - now, Clock::duration(0)));
    return static_cast<int>(std::min<long long>(pause.count(), 60'000));
}

void Simulator::endReboot(TimePoint now)
{
    const auto seconds = m_faults.number(Fault::Reboot);
    if (seconds && now >= m_faults.since(Fault::Reboot) + std::chrono::seconds(*seconds)) {
        m_faults.clear(Fault::Reboot);
        noteControl("clear reboot");
    }
}

void Simulator::resetModules()
{
    m_control.drop();
    m_ground.drop();
}

void Simulator::readStandardInput()
{
    char buffer[4'096];
    const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (count <= 0) {
        m_inputOpen = false;
        m_ending = m_ending || m_options.exitWithStdin;
        return;
    }
    m_input.add({buffer, static_cast<std::size_t>(count)});
    while (const auto line = m_input.next()) {
        for (std::string& reply : control(*line)) {
            m_replies.push_back(std::move(reply));
        }
    }
    if (m_input.dropOverlong()) {
        m_replies.emplace_back("error the line is too long");
    }
}

} // namespace simulator
