#include "simulator/Device.h"

#include "simulator/Text.h"

#include <algorithm>

#include <sys/resource.h>

namespace simulator {

namespace {

/// Returns the maximum number of connections of one device, chosen so that the connections of all
/// three devices stay within the descriptor limit.
std::size_t connectionLimit()
{
    constexpr rlim_t otherDescriptors = 32;
    constexpr rlim_t most = 1'000;
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlim_t left = limit.rlim_cur - std::min(limit.rlim_cur, otherDescriptors);
    return static_cast<std::size_t>(std::clamp<rlim_t>(left / 3, 1, most));
}

} // namespace

Device::Device(std::string name, std::string address, std::uint16_t port, const FaultTable& faults,
               Journal& journal, Factory factory)
    : m_name(std::move(name)), m_faults(&faults), m_journal(&journal),
      m_factory(std::move(factory)), m_listener(std::move(address), port),
      m_connectionLimit(connectionLimit())
{
}

bool Device::flappingDown(TimePoint now) const
{
    const auto period = m_faults->number(Fault::Flapping);
    if (!period || !isModule()) {
        return false;
    }
    return (now - m_faults->since(Fault::Flapping)) / Milliseconds(*period) % 2 == 1;
}

Reachability Device::wantedReachability(TimePoint now) const
{
    if (m_faults->names(Fault::Down, m_name) || m_faults->active(Fault::Reboot)) {
        return Reachability::Deaf;
    }
    if (m_faults->names(Fault::Refuse, m_name) || flappingDown(now)) {
        return Reachability::Refusing;
    }
    return m_faults->names(Fault::NeverAccept, m_name) ? Reachability::Unheard
                                                       : Reachability::Listening;
}

void Device::applyReachability(TimePoint now)
{
    const Reachability before = m_listener.reachability();
    const Reachability wanted = wantedReachability(now);
    if (wanted == before) {
        return;
    }
    const std::string error = m_listener.become(wanted);
    if (!error.empty()) {
        printLine("error " + error);
    }
    // Open connections do not survive a power loss, nor the times when a flapping module is down.
    if (before == Reachability::Deaf || flappingDown(now)) {
        drop();
    }
}

void Device::addTo(std::vector<pollfd>& descriptors) const
{
    if (m_listener.descriptor() >= 0 && m_connections.size() < m_connectionLimit) {
        descriptors.push_back({m_listener.descriptor(), POLLIN, 0});
    }
    if (m_listener.reachability() == Reachability::Deaf) {
        return;
    }
    for (const auto& connection : m_connections) {
        descriptors.push_back({connection->descriptor(), connection->wantedEvents(), 0});
    }
}

void Device::advance(const std::vector<pollfd>& descriptors, TimePoint now)
{
    applyReachability(now);
    if (m_listener.reachability() == Reachability::Deaf) {
        return;
    }
    const auto reported = [&descriptors](int descriptor) {
        return std::any_of(descriptors.begin(), descriptors.end(), [descriptor](const pollfd& p) {
            return p.fd == descriptor && (p.revents & (POLLIN | POLLHUP | POLLERR)) != 0;
        });
    };
    for (const auto& connection : m_connections) {
        if (reported(connection->descriptor())) {
            connection->readable();
        }
        connection->advance(now);
    }
    m_connections.erase(std::remove_if(m_connections.begin(), m_connections.end(),
                                       [](const auto& c) { return c->finished(); }),
                        m_connections.end());
    acceptAll(now);
}

void Device::acceptAll(TimePoint now)
{
    while (m_listener.descriptor() >= 0 && m_connections.size() < m_connectionLimit) {
        std::string peer;
        FileDescriptor socket = m_listener.accept(peer);
        if (!socket.valid()) {
            return;
        }
        const ConnectionName name{m_name, ++m_lastNumber};
        m_journal->write(JournalLine(m_name, name.number, "open").text("peer", peer));
        m_connections.push_back(m_factory(std::move(socket), name, now));
        m_connections.back()->advance(now);
    }
}

TimePoint Device::nextWake(TimePoint now) const
{
    TimePoint wake = never;
    if (const auto period = m_faults->number(Fault::Flapping); period && isModule()) {
        const TimePoint start = m_faults->since(Fault::Flapping);
        const Milliseconds length(*period);
        wake = start + ((now - start) / length + 1) * length;
    }
    if (m_listener.reachability() != Reachability::Deaf) {
        for (const auto& connection : m_connections) {
            wake = std::min(wake, connection->nextWake());
        }
    }
    return wake;
}

void Device::drop()
{
    for (const auto& connection : m_connections) {
        connection->reset("dropped");
    }
}

} // namespace simulator
