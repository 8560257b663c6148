// The interface through which the window stops its workers.
#pragma once

namespace sys {

/// Work in a separate thread that can be stopped. To stop several workers, call requestStop() of
/// all before stopAndWait() of the first, so that they end in parallel.
class Worker
{
public:
    virtual ~Worker() = default;

    /// Asks the worker to end and returns immediately. May be called from any thread.
    virtual void requestStop() noexcept = 0;

    /// Asks the worker to end, interrupts whatever the worker waits for, and returns once the
    /// worker has ended, which takes milliseconds.
    virtual void stopAndWait() = 0;
};

} // namespace sys
