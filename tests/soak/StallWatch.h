// How long a thread's event loop keeps a user waiting.
#pragma once

#include <algorithm>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Ticks every five milliseconds in the thread that made it and keeps the longest wait between two
/// ticks: what a click at the worst moment would have waited.
class StallWatch
{
public:
    StallWatch()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            m_longest = std::max(m_longest, m_sinceTick.restart());
            ++m_ticks;
        });
        m_timer.start(5);
        m_sinceTick.start();
    }

    /// In milliseconds, the wait that lasts until now included.
    qint64 longest() const { return std::max(m_longest, m_sinceTick.elapsed()); }
    int ticks() const { return m_ticks; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_longest = 0;
    int m_ticks = 0;
};
