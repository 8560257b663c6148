#include "posix/StoppableCalls.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace sys {

namespace {

constexpr unsigned long wakeInterval = 5; // milliseconds

/// Installs an empty handler, so that SIGURG interrupts a system call and has no other effect.
void setWakeHandler()
{
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGURG, &action, nullptr);
}

/// A scope in which SIGURG reaches this thread even if the program blocks it.
class WakeSignalUnblock
{
public:
    WakeSignalUnblock()
    {
        sigset_t wake;
        ::sigemptyset(&wake);
        ::sigaddset(&wake, SIGURG);
        ::pthread_sigmask(SIG_UNBLOCK, &wake, &m_before);
    }
    ~WakeSignalUnblock() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    WakeSignalUnblock(const WakeSignalUnblock&) = delete;
    WakeSignalUnblock& operator=(const WakeSignalUnblock&) = delete;

private:
    sigset_t m_before;
};

} // namespace

StoppableCalls::Call::Call(StoppableCalls& calls) : m_calls(&calls)
{
    const std::lock_guard<std::mutex> lock(calls.m_mutex);
    calls.m_calls.push_back(this);
}

StoppableCalls::Call::~Call()
{
    if (m_calls != nullptr) {
        const std::lock_guard<std::mutex> lock(m_calls->m_mutex);
        auto& all = m_calls->m_calls;
        all.erase(std::find(all.begin(), all.end(), this));
    }
}

int StoppableCalls::Call::open(const char* path, int flags, mode_t mode)
{
    static std::once_flag handlerIsSet;
    std::call_once(handlerIsSet, setWakeHandler);
    const WakeSignalUnblock unblock;
    m_opening = true;
    int descriptor = -1;
    do {
        descriptor = ::open(path, flags, mode);
    } while (descriptor < 0 && errno == EINTR && !m_calls->stopRequested());
    m_opening = false;
    return descriptor;
}

StoppableCalls::~StoppableCalls()
{
    for (Call* const call : m_calls) {
        call->m_calls = nullptr; // this thread deletes the object within the call
    }
    for (const int descriptor : m_kept) {
        ::close(descriptor);
    }
}

void StoppableCalls::keep(int descriptor)
{
    if (descriptor >= 0) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_kept.push_back(descriptor);
    }
}

void StoppableCalls::stopAndWait(const std::function<bool(unsigned long)>& finished)
{
    requestStop();
    while (!finished(wakeInterval)) {
        wakeAll();
    }
    while (wakeAll()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(wakeInterval));
    }
}

bool StoppableCalls::wakeAll()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    bool othersAreLeft = false;
    for (const Call* call : m_calls) {
        othersAreLeft = othersAreLeft || ::pthread_equal(call->m_thread, ::pthread_self()) == 0;
        ::shutdown(call->m_socket, SHUT_RDWR);
        if (call->m_opening) {
            ::pthread_kill(call->m_thread, SIGURG);
        }
    }
    return othersAreLeft;
}

} // namespace sys
