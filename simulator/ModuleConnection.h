// One client of the control or the ground module.
#pragma once

#include "simulator/Connection.h"
#include "simulator/FaultTable.h"

#include <array>
#include <deque>
#include <string>
#include <string_view>

namespace simulator {

// Frames of the modules and of their clients:
//   byte 0   start byte: AA control module and every client, BB ground module
//   byte 1   AF
//   byte 2   type: 00 version report, 04 heartbeat and its answer
//   byte 3   length of the payload
//   byte 4-  payload; version report: hardware type, then hardware, software, protocol and
//            bootloader version, each two bytes, high byte first
//   last     checksum: type, payload bytes and 5A added up, modulo 256

/// The numbers of the version report in frame order; each may be given as signed or unsigned.
using Versions = std::array<int, 5>;

/// Parses five numbers such as "7,300,600,100,10". Returns false for an invalid text.
bool parseVersions(std::string_view text, Versions& versions);

/// The settings shared by all connections of one module; must outlive them.
struct ModuleSettings
{
    bool control = true; ///< false: the ground module
    Milliseconds heartbeat{1'000};
    Versions versions{7, 300, 600, 100, 10};
};

/// One client of a module. Sends the client heartbeats and, for the control module, a version
/// report; checks the client's heartbeat answers.
class ModuleConnection : public Connection
{
public:
    ModuleConnection(FileDescriptor socket, ConnectionName name, Journal& journal,
                     const FaultTable& faults, const ModuleSettings& settings, TimePoint now);

    /// Queues a version report, unless this is the ground module or "no-version" is on.
    void reportVersions();

protected:
    void received(std::string_view bytes) override;
    void work(TimePoint now) override;
    TimePoint nextWork() const override;

private:
    FaultScope faults() const;
    std::string started(std::string frame) const;
    std::string heartbeatFrame() const;
    std::string versionFrame() const;
    void sendFrame(std::string frame, bool cut);
    void beat(TimePoint now);
    void sendHeartbeat(TimePoint now);
    void expectAnswer(TimePoint now) { m_expected.push_back(now + Milliseconds(1'000)); }
    void complain(const std::string& what, std::string_view bytes);

    const FaultTable* m_faults;
    const ModuleSettings* m_settings;
    TimePoint m_opened;
    TimePoint m_versionDue;
    TimePoint m_nextBeat;
    TimePoint m_nextUnknown;
    int m_beats = 0;
    bool m_paused = false;
    std::string m_unread;             ///< bytes of an incomplete answer
    std::deque<TimePoint> m_expected; ///< when each outstanding answer becomes overdue
};

} // namespace simulator
