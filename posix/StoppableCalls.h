// System calls that another thread can end, and the descriptors that they leave open.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

#include <pthread.h>
#include <sys/types.h>

namespace sys {

/// The calls into one object, from any thread, that wait in the system. All of them can be stopped,
/// once. By design the object's sockets and files stay open after a call; those passed to keep()
/// are closed with this object. All members may be called from any thread.
class StoppableCalls
{
public:
    /// One call into the object, in the thread that created it: stopAndWait() does not return in
    /// another thread while this exists. In its own thread it may outlive the object.
    class Call
    {
    public:
        explicit Call(StoppableCalls& calls);
        ~Call();

        /// Sets the socket that the call waits on; it stays open as long as the call. A negative
        /// value means none.
        void waitOn(int socket) { m_socket = socket; }

        /// Calls open(2). It may block while another process holds a lease on the file; a stop ends
        /// that by sending this thread SIGURG, which programs ignore by default. Installs an empty
        /// handler for that signal at the first call.
        int open(const char* path, int flags, mode_t mode);

    private:
        friend StoppableCalls;

        StoppableCalls* m_calls; // none once the object is gone
        const pthread_t m_thread = ::pthread_self();
        std::atomic<int> m_socket{-1};
        std::atomic<bool> m_opening{false};
    };

    ~StoppableCalls();

    /// Takes ownership of a descriptor; it is closed with this object. A negative value means none.
    void keep(int descriptor);

    /// Asks all calls to end. They notice when the system call they are waiting in returns.
    void requestStop() noexcept { m_stopRequested = true; }
    bool stopRequested() const noexcept { return m_stopRequested; }

    /// Asks all calls to end and interrupts what they wait for every few milliseconds, until no
    /// call of another thread is left and `finished`, which waits at most that many milliseconds,
    /// returns true: one shutdown ends a pending connect or receive, but the next connect blocks
    /// again.
    void stopAndWait(const std::function<bool(unsigned long)>& finished);

private:
    /// Interrupts what every call currently waits for. Returns whether other threads have calls
    /// left.
    bool wakeAll();

    std::atomic<bool> m_stopRequested{false};
    std::mutex m_mutex; // guards the members below
    std::vector<Call*> m_calls;
    std::vector<int> m_kept;
};

} // namespace sys
