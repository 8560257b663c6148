#include "simulator/Replay.h"

#include <algorithm>

namespace simulator {

const RecordedExchange* Replay::exchange(const std::string& request)
{
    const auto isRequest = [&request](const RecordedExchange& e) { return e.request == request; };
    auto& exchanges = m_run.exchanges;
    const auto next =
        std::find_if(exchanges.begin(), exchanges.end(),
                     [&isRequest](const RecordedExchange& e) { return isRequest(e) && !e.played; });
    if (next == exchanges.end()) {
        const auto recorded = std::count_if(exchanges.begin(), exchanges.end(), isRequest);
        m_failure = "\"" + request + "\" is not in the recorded run" +
                    (recorded == 0 ? "" : " more than " + std::to_string(recorded) + " times");
        return nullptr;
    }
    next->played = true;
    return &*next;
}

const std::vector<RecordedEvent>* Replay::connection(const std::string& device)
{
    const auto& connections = m_run.connections[device];
    const std::size_t number = m_connectionsPlayed[device]++;
    if (number >= connections.size()) {
        m_failure = "the recorded run has no connection " + std::to_string(number + 1) +
                    " to the " + device + " module";
        return nullptr;
    }
    return &connections[number];
}

ReplayConnection::ReplayConnection(FileDescriptor socket, ConnectionName name, Journal& journal,
                                   Replay& replay, TimePoint now)
    : Connection(std::move(socket), std::move(name), journal), m_replay(&replay), m_start(now)
{
    if (this->name().device != "camera") {
        m_events = replay.connection(this->name().device);
    }
}

void ReplayConnection::received(std::string_view bytes)
{
    if (m_events || name().device != "camera") {
        return;
    }
    m_request += bytes;
    if (m_request.find("\r\n\r\n") == std::string::npos) {
        return;
    }
    const RecordedExchange* const exchange =
        m_replay->exchange(m_request.substr(0, m_request.find("\r\n")));
    if (exchange) {
        m_events = &exchange->events;
        m_start = Clock::now();
    }
}

void ReplayConnection::play(const RecordedEvent& event)
{
    switch (event.kind) {
    case ObservedEvent::Kind::Sent:
        if (!event.bytes.empty()) {
            queueBytes(event.bytes);
        }
        if (event.unknown > 0) {
            Step zeros{Step::Kind::Send};
            zeros.part.content =
                std::make_shared<RepeatedContent>(std::string(1, '\0'), event.unknown);
            zeros.part.end = event.unknown;
            queue(std::move(zeros));
        }
        break;
    case ObservedEvent::Kind::HalfClose:
        queue(Step{Step::Kind::HalfClose});
        break;
    case ObservedEvent::Kind::Close:
        queue(Step{Step::Kind::Close});
        break;
    case ObservedEvent::Kind::Reset:
        queue(Step{Step::Kind::Reset});
        break;
    case ObservedEvent::Kind::Open:
    case ObservedEvent::Kind::Received:
        break;
    }
}

void ReplayConnection::work(TimePoint now)
{
    while (m_events && m_next < m_events->size() && now >= nextWork()) {
        play((*m_events)[m_next++]);
    }
}

TimePoint ReplayConnection::nextWork() const
{
    return m_events && m_next < m_events->size() ? m_start + (*m_events)[m_next].after : never;
}

} // namespace simulator
