#include "simulator/ModuleConnection.h"

#include "simulator/Text.h"

#include <algorithm>
#include <charconv>

namespace simulator {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view controlHeartbeat = "\xAA\xAF\x04\x01\x00\x5E"sv;
constexpr std::string_view groundHeartbeat = "\xBB\xAF\x04\x01\x00\x5E"sv;
constexpr std::string_view expectedAnswer = "\xAA\xAF\x04\x01\x01\x5F"sv;
constexpr std::string_view unknownFrame = "\xAA\xAF\x7F\x01\x01\xDA"sv;
constexpr std::string_view highBitVersion =
    "\xAA\xAF\x00\x09\xFF\x01\x90\x80\x00\xFF\xFF\x00\x80\xE8"sv;

/// Time from opening a connection, when the first heartbeat is sent, to the version report.
constexpr Milliseconds versionDelay{100};
/// Minimum time from the first heartbeat, or from an early version report, to the next heartbeat:
/// keeps heartbeats at least 100 ms away from the version report.
constexpr Milliseconds shortestFirstBeat{200};
constexpr Milliseconds cutPause{60};
constexpr Milliseconds unknownInterval{1'000};
/// Maximum number of unsent steps; a client with more is disconnected.
constexpr std::size_t queueLimit = 1'000;

/// Number of the first heartbeat on which half-close, reset-mid-frame and heartbeat-pause act. The
/// earlier heartbeats let the client report that the link is up.
constexpr int actingBeat = 3;

} // namespace

bool parseVersions(std::string_view text, Versions& versions)
{
    Versions parsed{};
    for (std::size_t i = 0; i < parsed.size(); ++i) {
        const auto [end, error] =
            std::from_chars(text.data(), text.data() + text.size(), parsed[i]);
        const int lowest = i == 0 ? -128 : -32'768;
        const int highest = i == 0 ? 255 : 65'535;
        if (error != std::errc() || parsed[i] < lowest || parsed[i] > highest) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (i + 1 < parsed.size()) {
            if (text.empty() || text.front() != ',') {
                return false;
            }
            text.remove_prefix(1);
        }
    }
    if (!text.empty()) {
        return false;
    }
    versions = parsed;
    return true;
}

ModuleConnection::ModuleConnection(FileDescriptor socket, ConnectionName name, Journal& journal,
                                   const FaultTable& faults, const ModuleSettings& settings,
                                   TimePoint now)
    : Connection(std::move(socket), std::move(name), journal), m_faults(&faults),
      m_settings(&settings), m_opened(now), m_versionDue(now + versionDelay), m_nextBeat(now),
      m_nextUnknown(now + unknownInterval / 2)
{
    if (this->faults().active(Fault::EarlyVersion)) {
        m_versionDue = now;
        m_nextBeat = now + std::max(m_settings->heartbeat, shortestFirstBeat);
    }
    if (!m_settings->control) {
        m_versionDue = never;
    }
}

FaultScope ModuleConnection::faults() const
{
    return {*m_faults, name().device, static_cast<std::uint64_t>(name().number)};
}

std::string ModuleConnection::started(std::string frame) const
{
    if (const auto start = faults().value(Fault::WrongStart)) {
        unsigned byte = frame[0] == '\xAA' ? 0xBBU : 0xAAU;
        std::from_chars(start->data(), start->data() + start->size(), byte, 16);
        frame[0] = static_cast<char>(byte & 0xFFU);
    }
    return frame;
}

std::string ModuleConnection::heartbeatFrame() const
{
    return started(std::string(m_settings->control ? controlHeartbeat : groundHeartbeat));
}

std::string ModuleConnection::versionFrame() const
{
    if (faults().active(Fault::HighBitVersion)) {
        return started(std::string(highBitVersion));
    }
    std::string frame = "\xAA\xAF";
    if (!m_settings->control) {
        frame[0] = '\xBB';
    }
    frame += '\0';
    frame += '\x09';
    unsigned sum = 0x5A;
    const auto add = [&frame, &sum](unsigned byte) {
        frame += static_cast<char>(byte & 0xFFU);
        sum += byte & 0xFFU;
    };
    add(static_cast<unsigned>(m_settings->versions[0]));
    for (std::size_t i = 1; i < m_settings->versions.size(); ++i) {
        const auto version = static_cast<unsigned>(m_settings->versions[i]);
        add(version >> 8);
        add(version);
    }
    frame += static_cast<char>(sum & 0xFFU);
    return started(std::move(frame));
}

void ModuleConnection::sendFrame(std::string frame, bool cut)
{
    if (!cut) {
        queueBytes(std::move(frame));
        return;
    }
    const std::size_t half = frame.size() / 2;
    queueBytes(frame.substr(0, half));
    queuePause(cutPause);
    queueBytes(frame.substr(half));
}

void ModuleConnection::reportVersions()
{
    const FaultScope scope = faults();
    if (m_settings->control && !scope.active(Fault::NoVersion)) {
        sendFrame(versionFrame(),
                  scope.active(Fault::SplitFrames) || scope.active(Fault::SplitVersion));
    }
}

void ModuleConnection::sendHeartbeat(TimePoint now)
{
    const FaultScope scope = faults();
    std::string frame = heartbeatFrame();
    if (const auto size = scope.number(Fault::LongSegment)) {
        frame += std::string(static_cast<std::size_t>(*size) - 2 * frame.size(), '\x55') + frame;
        expectAnswer(now);
    }
    expectAnswer(now);
    if (scope.active(Fault::TwoFrames)) {
        const bool versionFirst = scope.names(Fault::TwoFrames, "version");
        frame = versionFirst ? versionFrame() + frame : frame + versionFrame();
    }
    sendFrame(std::move(frame), scope.active(Fault::SplitFrames));
}

void ModuleConnection::beat(TimePoint now)
{
    const FaultScope scope = faults();
    const auto interval = scope.number(Fault::HeartbeatInterval);
    const Milliseconds pause = interval ? Milliseconds(*interval) : m_settings->heartbeat;
    m_nextBeat = now + (m_beats == 0 ? std::max(pause, shortestFirstBeat) : pause);
    const auto age = std::chrono::duration_cast<std::chrono::seconds>(now - m_opened).count();
    const auto last = scope.number(Fault::HeartbeatStops);
    if (scope.names(Fault::NoHeartbeat, name().device) || (last && age >= *last)) {
        return;
    }
    const bool acting = m_beats + 1 >= actingBeat;
    const auto away = scope.number(Fault::HeartbeatPause);
    if (!away) {
        m_paused = false;
    } else if (acting && !m_paused) {
        m_paused = true;
        m_nextBeat = now - pause + std::chrono::seconds(*away);
        return;
    }
    if (acting && scope.active(Fault::ResetMidFrame)) {
        queueBytes(heartbeatFrame().substr(0, 3));
        queuePause(cutPause);
        queue(Step{Step::Kind::Reset});
        m_nextBeat = never;
        return;
    }
    if (acting && scope.active(Fault::HalfClose)) {
        queue(Step{Step::Kind::HalfClose});
        m_nextBeat = never;
        m_nextUnknown = never;
        m_expected.clear();
        return;
    }
    ++m_beats;
    sendHeartbeat(now);
}

void ModuleConnection::work(TimePoint now)
{
    if (queued() > queueLimit) {
        close("the client does not read");
        return;
    }
    while (!m_expected.empty() && now >= m_expected.front()) {
        m_expected.pop_front();
        complain("heartbeat not answered", {});
    }
    if (m_faults->names(Fault::Silent, name().device)) {
        m_nextBeat = std::max(m_nextBeat, now + Milliseconds(100));
        m_nextUnknown = std::max(m_nextUnknown, now + Milliseconds(100));
        if (m_versionDue != never) {
            m_versionDue = m_nextBeat + versionDelay;
        }
        return;
    }
    // If both are due, because this program was late, the one that was due first goes first.
    if (m_nextBeat < m_versionDue && now >= m_nextBeat) {
        beat(now);
    }
    if (now >= m_versionDue) {
        m_versionDue = never;
        if (!faults().active(Fault::TwoFrames)) {
            reportVersions();
        }
    }
    if (now >= m_nextBeat) {
        beat(now);
    }
    if (now >= m_nextUnknown) {
        m_nextUnknown = now + unknownInterval;
        if (faults().active(Fault::UnknownType)) {
            std::string frame(unknownFrame);
            frame[0] = m_settings->control ? '\xAA' : '\xBB';
            sendFrame(started(std::move(frame)), faults().active(Fault::SplitFrames));
        }
    }
}

TimePoint ModuleConnection::nextWork() const
{
    const TimePoint overdue = m_expected.empty() ? never : m_expected.front();
    return std::min({m_versionDue, m_nextBeat, m_nextUnknown, overdue});
}

void ModuleConnection::received(std::string_view bytes)
{
    m_unread += bytes;
    while (!m_unread.empty()) {
        const std::size_t length = std::min(m_unread.size(), expectedAnswer.size());
        if (m_unread.compare(0, length, expectedAnswer, 0, length) != 0) {
            complain("wrong answer", m_unread);
            m_unread.clear();
            return;
        }
        if (length < expectedAnswer.size()) {
            return;
        }
        m_unread.erase(0, length);
        if (m_expected.empty()) {
            complain("answer without a heartbeat", expectedAnswer);
        } else {
            m_expected.pop_front();
        }
    }
}

void ModuleConnection::complain(const std::string& what, std::string_view bytes)
{
    JournalLine report = line("complaint").text("text", what);
    if (!bytes.empty()) {
        report.bytes(bytes);
    }
    journal().write(report);
    printLine(name().device + ": " + what + " (connection " + std::to_string(name().number) + ")" +
              (bytes.empty() ? std::string() : " " + hexText(bytes)));
}

} // namespace simulator
