// Captures the debug log.
#pragma once

#include <mutex>
#include <string>

#include <QString>
#include <QStringList>

namespace support {

/// A capture of the qDebug and qInfo lines of all threads, in order, while this object exists. They
/// are not printed. Works only in tests that runTest() runs (TestMain.h).
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList lines() const;
    int count(const QString& line) const;
    void clear();

    /// Waits, processing events, until the line has been logged at least `times` times. Returns
    /// false after the limit in milliseconds.
    bool waitFor(const QString& line, int times = 1, int limit = 5000) const;

private:
    friend class MessageLog;
    void take(const QString& line);

    mutable std::mutex m_mutex;
    QStringList m_lines;
};

} // namespace support
