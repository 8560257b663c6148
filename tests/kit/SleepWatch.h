// Detects whether a thread is waiting.
#pragma once

#include <atomic>

#include <QThread>

namespace support {

/// Returns whether the thread with this number waits in the kernel, for data or for a lock. May be
/// called from any thread.
bool threadIsAsleep(int id);

/// An observer that detects whether a thread blocks in a call. Must be created before the thread
/// starts.
class SleepWatch
{
public:
    explicit SleepWatch(QThread& thread);
    ~SleepWatch();
    SleepWatch(const SleepWatch&) = delete;
    SleepWatch& operator=(const SleepWatch&) = delete;

    /// Waits, processing events, until the thread was seen asleep several times in a row. Returns
    /// false after five seconds.
    bool waitUntilAsleep() const;
    /// Returns whether the thread sleeps now, including on a lock. May be called from any thread.
    bool isAsleep() const { return threadIsAsleep(m_id); }

private:
    QMetaObject::Connection m_connection;
    std::atomic<int> m_id{0};
};

} // namespace support
