// The debug log, seen by a test.
#pragma once

#include <mutex>
#include <string>

#include <QString>
#include <QStringList>

namespace support {

/// Collects the lines of qDebug and qInfo, of every thread and in their order, from its
/// construction to its end; they are then not printed. Needs a main function of TestMain.h.
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

    /// Waits until the line has come at least `times` times; events are processed meanwhile.
    /// False after the limit in milliseconds.
    bool waitFor(const QString& line, int times = 1, int limit = 5000) const;

private:
    friend class MessageLog;
    void take(const QString& line);

    mutable std::mutex m_mutex;
    QStringList m_lines;
};

/// Expects a warning (or critical message) that holds `part` at least once before its own end, and
/// lets it pass. Without it, or when none comes, the test fails.
class ExpectedWarning
{
public:
    explicit ExpectedWarning(const QString& part);
    ~ExpectedWarning();
    ExpectedWarning(const ExpectedWarning&) = delete;
    ExpectedWarning& operator=(const ExpectedWarning&) = delete;

private:
    friend class MessageLog;
    bool take(const QString& text);

    QString m_part;
    bool m_seen = false; // guarded by the log's mutex until it is removed there
};

} // namespace support
