// Whether a thread waits.
#pragma once

#include <atomic>

#include <QThread>

namespace support {

/// Whether the thread of this number waits in the system, for data or for a lock. From any thread.
bool threadIsAsleep(int id);

/// Watches a thread from before its start, so that a test knows when it has come to rest in a
/// call that blocks.
class SleepWatch
{
public:
    explicit SleepWatch(QThread& thread);
    ~SleepWatch();
    SleepWatch(const SleepWatch&) = delete;
    SleepWatch& operator=(const SleepWatch&) = delete;

    /// Waits, processing events, until the thread was seen asleep several times in a row; false
    /// after five seconds.
    bool waitUntilAsleep() const;
    /// Whether it sleeps now, be it for a lock. From any thread.
    bool isAsleep() const { return threadIsAsleep(m_id); }

private:
    QMetaObject::Connection m_connection;
    std::atomic<int> m_id{0};
};

} // namespace support
