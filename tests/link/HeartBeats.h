// The heartbeat count of a link thread, for tests.
#pragma once

/// Ticks since the last heartbeat. Read beside the link thread, as the window's timer does; by this
/// name the race checks know that it may be.
template <class LinkThread>
[[gnu::noinline]] int heartBeatsOf(const LinkThread& thread)
{
    return thread.heartBeatCount;
}
