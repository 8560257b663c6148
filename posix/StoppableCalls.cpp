#include "posix/StoppableCalls.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace sys {

namespace {

constexpr unsigned long wakeInterval = 5; // milliseconds

} // namespace

StoppableCalls::Call::Call(StoppableCalls& calls) : m_calls(calls)
{
    const std::lock_guard<std::mutex> lock(m_calls.m_mutex);
    m_calls.m_calls.push_back(this);
}

StoppableCalls::Call::~Call()
{
    const std::lock_guard<std::mutex> lock(m_calls.m_mutex);
    auto& all = m_calls.m_calls;
    all.erase(std::find(all.begin(), all.end(), this));
}

StoppableCalls::~StoppableCalls()
{
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
    for (const Call* call : m_calls) {
        ::shutdown(call->m_socket, SHUT_RDWR);
    }
    return !m_calls.empty();
}

} // namespace sys
