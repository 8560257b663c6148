// One simulated device.
#pragma once

#include "simulator/Clock.h"
#include "simulator/Connection.h"
#include "simulator/FaultTable.h"
#include "simulator/Journal.h"
#include "simulator/Listener.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <poll.h>

namespace simulator {

/// One simulated device: its address, its open connections, and the faults that decide whether it
/// is reachable. The connections created by its factory define what it sends.
class Device
{
public:
    using Factory =
        std::function<std::unique_ptr<Connection>(FileDescriptor, ConnectionName, TimePoint now)>;

    /// name: "control", "ground" or "camera"; also the name in the journal.
    Device(std::string name, std::string address, std::uint16_t port, const FaultTable& faults,
           Journal& journal, Factory factory);

    /// Listens, unless a fault that is already on prevents this. Returns an error text, empty on
    /// success.
    std::string start(TimePoint now) { return m_listener.become(wantedReachability(now)); }
    /// Adds the descriptors for poll.
    void addTo(std::vector<pollfd>& descriptors) const;
    /// Applies the faults. Unless the device is without power, reads from the connections that poll
    /// reported, performs due steps and accepts new connections.
    void advance(const std::vector<pollfd>& descriptors, TimePoint now);
    TimePoint nextWake(TimePoint now) const;
    /// Resets all open connections.
    void drop();
    const std::string& name() const { return m_name; }
    Reachability reachability() const { return m_listener.reachability(); }
    const std::vector<std::unique_ptr<Connection>>& connections() const { return m_connections; }

private:
    Reachability wantedReachability(TimePoint now) const;
    bool isModule() const { return m_name != "camera"; }
    bool flappingDown(TimePoint now) const;
    void applyReachability(TimePoint now);
    void acceptAll(TimePoint now);

    std::string m_name;
    const FaultTable* m_faults;
    Journal* m_journal;
    Factory m_factory;
    Listener m_listener;
    std::vector<std::unique_ptr<Connection>> m_connections;
    std::size_t m_connectionLimit; ///< further clients wait until one leaves
    int m_lastNumber = 0;
};

} // namespace simulator
