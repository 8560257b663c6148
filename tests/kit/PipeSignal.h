// Simulates programs that do not ignore SIGPIPE, and finds threads that block it.
#pragma once

#include <csignal>

#include <QDir>
#include <QFile>
#include <QSet>
#include <QString>

namespace support {

/// The default action of SIGPIPE, which ends the process, while this object exists.
class DeadlyPipeSignal
{
public:
    DeadlyPipeSignal() : m_before(std::signal(SIGPIPE, SIG_DFL)) {}
    ~DeadlyPipeSignal() { std::signal(SIGPIPE, m_before); }
    DeadlyPipeSignal(const DeadlyPipeSignal&) = delete;
    DeadlyPipeSignal& operator=(const DeadlyPipeSignal&) = delete;

private:
    void (*m_before)(int);
};

/// Returns whether the calling thread blocks SIGPIPE.
inline bool thisThreadBlocksPipeSignal()
{
    sigset_t blocked;
    ::pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    return ::sigismember(&blocked, SIGPIPE) == 1;
}

/// Returns the ids of the threads of this process that block SIGPIPE. A thread that is being
/// created or has just ended may be among them; a sanitizer's own thread always is.
inline QSet<QString> threadsThatBlockPipeSignal()
{
    QSet<QString> threads;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks.filePath(task + QStringLiteral("/status")));
        if (!status.open(QIODevice::ReadOnly)) {
            continue; // the thread has ended
        }
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("SigBlk:") &&
                ((line.mid(7).trimmed().toULongLong(nullptr, 16) >> (SIGPIPE - 1)) & 1U) != 0) {
                threads.insert(task);
            }
        }
    }
    return threads;
}

} // namespace support
