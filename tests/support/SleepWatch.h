// Whether a thread waits.
#pragma once

#include <atomic>

#include <QThread>

namespace support {

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

private:
    bool asleep() const;

    QMetaObject::Connection m_connection;
    std::atomic<int> m_id{0};
};

} // namespace support
