// One accepted connection of any device.
#pragma once

#include "simulator/Clock.h"
#include "simulator/FileDescriptor.h"
#include "simulator/Journal.h"
#include "simulator/Outbox.h"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace simulator {

/// The identity of a connection: the device's name and the connection's number, counted from 1.
struct ConnectionName
{
    std::string device;
    int number;
};

/// One accepted connection: reads input, processes its queue of steps and writes the journal. Never
/// blocks. A peer that vanishes, floods or stops reading affects only this connection.
class Connection
{
public:
    /// Takes ownership of the socket. The journal must outlive the connection.
    Connection(FileDescriptor socket, ConnectionName name, Journal& journal);
    virtual ~Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int descriptor() const { return m_socket.get(); }
    bool finished() const { return !m_socket.valid(); }
    /// Returns the poll events to wait for.
    short wantedEvents() const;
    /// Reads what has arrived; called when poll reports the socket.
    void readable();
    /// Queues the steps that are due, then performs queued steps until one has to wait.
    void advance(TimePoint now);
    /// Returns the latest time for the next call of advance() if poll() reports nothing until then.
    TimePoint nextWake() const;
    /// Closes the connection from this side without waiting for queued steps, which are dropped.
    void close(std::string_view reason);
    void reset(std::string_view reason);
    /// Queues these bytes as one step, after the steps already queued.
    void sendRaw(std::string bytes) { queueBytes(std::move(bytes)); }

protected:
    virtual void received(std::string_view bytes) = 0;
    /// Queues the steps that are due.
    virtual void work(TimePoint now) = 0;
    virtual TimePoint nextWork() const = 0;

    void queue(Step step) { m_steps.push_back(std::move(step)); }
    void queueBytes(std::string bytes);
    void queuePause(Milliseconds pause);
    std::size_t queued() const { return m_steps.size(); }
    /// Sets the bytes per second for recordings; 0: no limit.
    void setRate(std::uint64_t bytesPerSecond) { m_rate = bytesPerSecond; }
    /// Sends one byte at a time from now on, with this gap in between.
    void setSingleBytes(Milliseconds gap);
    const ConnectionName& name() const { return m_name; }
    Journal& journal() { return *m_journal; }
    JournalLine line(std::string_view event) const;

private:
    enum class Progress { Done, Later };
    Progress perform(Step& step, TimePoint now);
    Progress send(const Part& part, TimePoint now);
    std::size_t allowance(const Part& part, TimePoint now);
    void noteSent(const Part& part);
    void finish(const JournalLine& close);
    void peerEnded(std::string_view reason);
    void lingerThenClose();

    FileDescriptor m_socket;
    ConnectionName m_name;
    Journal* m_journal;
    std::deque<Step> m_steps;
    TimePoint m_wake = never;
    bool m_blocked = false;   ///< the socket accepts no more for now
    bool m_peerEnded = false; ///< the peer has closed its sending side
    bool m_lingering = false; ///< closed by us; waiting for the peer to close
    TimePoint m_lingerEnd = never;
    TimePoint m_pauseEnd = never;
    std::uint64_t m_sent = 0;     ///< bytes of the current step sent so far
    std::uint32_t m_checksum = 0; ///< of those bytes
    std::uint64_t m_rate = 0;
    TimePoint m_rateStart = never; ///< start of the time over which m_rate is measured
    std::uint64_t m_rateSent = 0;
    bool m_singleBytes = false;
    Milliseconds m_byteGap{};
};

} // namespace simulator
