// The heartbeat count of a link thread, for tests.
#pragma once

#include <QMetaObject>
#include <QObject>

/// Returns the ticks since the last heartbeat. Races with the link thread, as the window's timer
/// does; the thread sanitizer's suppression matches this function's name.
template <class LinkThread>
[[gnu::noinline]] int heartBeatsOf(const LinkThread& thread)
{
    return thread.heartBeatCount;
}

/// Ticks the thread's heartbeat timer, as if that many seconds had passed.
inline void tickHeartBeats(QObject& thread, int times)
{
    for (int number = 0; number < times; ++number) {
        QMetaObject::invokeMethod(&thread, "heartBeatTimer", Qt::DirectConnection);
    }
}
