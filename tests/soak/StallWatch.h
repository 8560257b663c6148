// Measures how long a thread's event loop does not respond.
#pragma once

#include <algorithm>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// A timer in the creating thread that ticks every five milliseconds and records the longest
/// interval between two ticks: the worst delay of a click.
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

    /// Returns the longest interval in milliseconds, including the current one up to now.
    qint64 longest() const { return std::max(m_longest, m_sinceTick.elapsed()); }
    int ticks() const { return m_ticks; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_longest = 0;
    int m_ticks = 0;
};
