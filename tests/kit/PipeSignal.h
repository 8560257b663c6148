// Simulates programs that do not ignore SIGPIPE, and counts threads that block it.
#pragma once

#include <csignal>

#include <QDir>
#include <QFile>
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

/// Returns how many threads of this process block SIGPIPE. A thread that is being created may count
/// briefly; a sanitizer's own thread always counts.
inline int threadsWithoutPipeSignal()
{
    int count = 0;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks.filePath(task + QStringLiteral("/status")));
        if (!status.open(QIODevice::ReadOnly)) {
            continue; // the thread has ended
        }
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("SigBlk:")) {
                const quint64 blocked = line.mid(7).trimmed().toULongLong(nullptr, 16);
                count += (blocked >> (SIGPIPE - 1)) & 1U ? 1 : 0;
            }
        }
    }
    return count;
}

} // namespace support
