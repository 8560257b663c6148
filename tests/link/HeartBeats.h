// The heartbeat count of a link thread, for tests.
#pragma once

#include <QMetaObject>
#include <QObject>

/// Ticks since the last heartbeat. Read beside the link thread, as the window's timer does; by this
/// name the race checks know that it may be.
template <class LinkThread>
[[gnu::noinline]] int heartBeatsOf(const LinkThread& thread)
{
    return thread.heartBeatCount;
}

/// As if so many seconds had passed.
inline void tickHeartBeats(QObject& thread, int times)
{
    for (int number = 0; number < times; ++number) {
        QMetaObject::invokeMethod(&thread, "heartBeatTimer", Qt::DirectConnection);
    }
}
