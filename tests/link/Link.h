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
const int stopLimit = 500 * support::timeFactor(); // milliseconds

/// Returns the ticks since the last heartbeat. Races with the link thread, as the window's timer
/// does; the thread sanitizer's suppression matches this function's name.
[[gnu::noinline]] int heartBeatsOf(const ModuleClientThread& thread);

/// Records the signals of a link thread, in that thread, as texts: "linked", "lost",
/// "version 7 300 600 100 10". Also records if linkedFlag is not what was reported last.
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

/// The thread, with its timer stopped, so that the test controls the ticks.
struct Link
{
    explicit Link(const Module& module);

    void start() const { thread->start(QThread::InheritPriority); }
    /// Ticks the heartbeat timer, as if that many seconds had passed.
    void tick(int times) const;
    /// Waits until the thread has connected that many times. Returns false after five seconds.
    bool waitUntilConnected(int times = 1) const;
    /// Waits until the thread has begun to connect that many times. Returns false likewise.
    bool waitUntilConnecting(int times = 1) const;

    const Module& module;
    support::LogCapture log;
    SignalRecorder recorder;
    const std::unique_ptr<ModuleClientThread> thread;
    const support::SleepWatch watch;
};
