// Programs that do not ignore SIGPIPE, and threads that are safe from it.
#pragma once

#include <csignal>

#include <QDir>
#include <QFile>
#include <QString>

namespace support {

/// While it lives, SIGPIPE ends the process, as in any program that does nothing about it.
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

/// How many threads of this process block SIGPIPE. One that is just being made may count for a
/// moment, and a sanitizer's own thread does all the time.
inline int threadsWithoutPipeSignal()
{
    int count = 0;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks.filePath(task + QStringLiteral("/status")));
        if (!status.open(QIODevice::ReadOnly)) {
            continue; // it has ended
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
