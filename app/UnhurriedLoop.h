// Fewer wake-ups of the window's thread while a download reports each of its receives.
#pragma once

#include <QMetaObject>
#include <QObject>

/// While it is switched on, the event loop of the thread that made it rests for a moment before it
/// waits for more events. A download tells thousands of receives a second; without the rest the
/// thread is woken for nearly each of them, which costs far more than the work it is woken for.
/// Nothing is lost or put in another order: what comes meanwhile is handled when the rest is over,
/// too soon for anybody to notice.
class UnhurriedLoop : public QObject
{
    Q_OBJECT

public:
    /// Length of a rest in microseconds.
    static constexpr unsigned long rest = 1000;

    void setActive(bool active);

private:
    QMetaObject::Connection m_connection;
};
