// How the window stops its workers.
#pragma once

namespace sys {

/// Works in a separate thread until it is stopped. Ask all workers to stop before waiting for each,
/// so that they end in parallel.
class Worker
{
public:
    virtual ~Worker() = default;

    /// Asks the worker to end and returns immediately. May be called from any thread.
    virtual void requestStop() noexcept = 0;

    /// Interrupts whatever the worker waits for and returns within milliseconds, when it has ended.
    virtual void stopAndWait() = 0;
};

} // namespace sys
