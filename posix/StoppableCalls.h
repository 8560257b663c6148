// System calls that another thread can end, and the descriptors that they leave open.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

#include <pthread.h>
#include <sys/types.h>

namespace sys {

/// The calls in progress, in any thread, to the blocking functions of one object. A stop ends all
/// of them and is final. By design sockets and files stay open after a call; those passed to keep()
/// are closed by this object's destructor. All members may be called from any thread.
class StoppableCalls
{
public:
    /// One call in progress, made by the thread that created this object. While this object exists,
    /// stopAndWait() does not return in any other thread. It may outlive the StoppableCalls if its
    /// own thread deletes that object.
    class Call
    {
    public:
        explicit Call(StoppableCalls& calls);
        ~Call();

        /// Sets the socket that the call waits on, which must stay open as long as the call exists.
        /// A negative value means none.
        void waitOn(int socket) { m_socket = socket; }

        /// Calls open(2), which may block while another process holds a lease on the file.
        /// stopAndWait() interrupts it by sending SIGURG, which is ignored by default, to this
        /// thread; the first call installs an empty handler for that signal.
        int open(const char* path, int flags, mode_t mode);

    private:
        friend StoppableCalls;

        StoppableCalls* m_calls; // nullptr once that object is gone
        const pthread_t m_thread = ::pthread_self();
        std::atomic<int> m_socket{-1};
        std::atomic<bool> m_opening{false};
    };

    ~StoppableCalls();

    /// Takes ownership of a descriptor, which the destructor closes. A negative value means none.
    void keep(int descriptor);

    /// Asks all calls to end, without interrupting their system calls: from now on, stopRequested()
    /// returns true.
    void requestStop() noexcept { m_stopRequested = true; }
    bool stopRequested() const noexcept { return m_stopRequested; }

    /// Asks all calls to end, and interrupts their system calls every few milliseconds until
    /// `finished` returns true and no call is left in another thread. `finished` waits at most the
    /// milliseconds passed to it. One interruption is not enough: it ends a pending connect or
    /// receive, but the next connect blocks again.
    void stopAndWait(const std::function<bool(unsigned long)>& finished);

private:
    /// Shuts down the socket of every call, and interrupts every open() in progress. Returns
    /// whether calls are left in other threads.
    bool wakeAll();

    std::atomic<bool> m_stopRequested{false};
    std::mutex m_mutex; // guards the members below
    std::vector<Call*> m_calls;
    std::vector<int> m_kept;
};

} // namespace sys
