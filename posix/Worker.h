// How the window stops what works for it.
#pragma once

namespace sys {

/// Works in a thread of its own until it is stopped. Asking all workers first and waiting for each
/// one then lets them end side by side.
class Worker
{
public:
    virtual ~Worker() = default;

    /// Asks the worker to end and returns at once. May be called from any thread.
    virtual void requestStop() noexcept = 0;

    /// Ends whatever the worker waits for and returns when it has ended, within milliseconds.
    virtual void stopAndWait() = 0;
};

} // namespace sys
