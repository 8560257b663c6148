// A link thread whose signals and log lines are recorded.
#pragma once

#include "tests/kit/LogCapture.h"
#include "tests/kit/SleepWatch.h"
#include "tests/kit/TimeFactor.h"
#include "tests/link/Modules.h"

#include <memory>
#include <mutex>

#include <QStringList>

constexpr quint16 modulePort = 5000;
const int stopLimit = 2000 * support::timeFactor(); // milliseconds

/// Returns the thread's heartbeat count. This read is not synchronised with the link thread, just
/// like the timer's access; the thread sanitizer's suppression matches this function's name.
[[gnu::noinline]] int heartBeatsOf(const ModuleClientThread& thread);

/// A recorder that stores the signals of a link thread, in that thread, as texts: "linked", "lost",
/// "version 7 300 600 100 10". A text also says if linkedFlag is not the flag reported last.
class SignalRecorder
{
public:
    void listenTo(const ModuleClientThread& thread);
    QStringList signalTexts() const;

private:
    void record(const QString& text, bool linkedFlag);

    bool m_isLinked = false;
    mutable std::mutex m_mutex; // for m_texts, which the test's thread reads
    QStringList m_texts;
};

/// A link thread whose timer is stopped, so that the test controls the ticks.
struct Link
{
    explicit Link(const Module& module);

    void start() const { thread->start(QThread::InheritPriority); }
    /// Calls the timer's slot that many times, as if that many seconds had passed.
    void tick(int times) const;
    /// Waits until the thread has connected that many times. Returns false after five seconds.
    bool waitUntilConnected(int times = 1) const;
    /// Waits until the thread has begun to connect that many times. Returns false after five
    /// seconds.
    bool waitUntilConnecting(int times = 1) const;

    const Module& module;
    support::LogCapture log;
    SignalRecorder recorder;
    const std::unique_ptr<ModuleClientThread> thread;
    const support::SleepWatch watch;
};
