// Replays a recorded run: the devices of --replay.
#pragma once

#include "simulator/Connection.h"
#include "simulator/RecordedRun.h"

#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// The recorded run and the current position in it. Shared by all connections; must outlive them.
class Replay
{
public:
    explicit Replay(RecordedRun run) : m_run(std::move(run)) {}

    /// Returns the first exchange with this request line that was not replayed yet. If there is
    /// none, sets the failure and returns nullptr.
    const RecordedExchange* exchange(const std::string& request);
    /// Returns what the module did on its next recorded connection. If there is none, sets the
    /// failure and returns nullptr.
    const std::vector<RecordedEvent>* connection(const std::string& device);
    /// Returns why the run cannot continue; empty if it can.
    const std::string& failure() const { return m_failure; }

private:
    RecordedRun m_run;
    std::map<std::string, std::size_t> m_connectionsPlayed;
    std::string m_failure;
};

/// One client of a replayed device.
class ReplayConnection : public Connection
{
public:
    ReplayConnection(FileDescriptor socket, ConnectionName name, Journal& journal, Replay& replay,
                     TimePoint now);

protected:
    void received(std::string_view bytes) override;
    void work(TimePoint now) override;
    TimePoint nextWork() const override;

private:
    void play(const RecordedEvent& event);

    Replay* m_replay;
    const std::vector<RecordedEvent>* m_events = nullptr; ///< of the request or connection
    std::size_t m_next = 0;
    TimePoint m_start;
    std::string m_request; ///< received so far (camera)
};

} // namespace simulator
