#include "tests/kit/LogCapture.h"

#include "tests/kit/MessageLog.h"

#include <QString>
#include <QStringList>
#include <QTest>

namespace support {

LogCapture::LogCapture()
{
    MessageLog::instance().add(this);
}

LogCapture::~LogCapture()
{
    MessageLog::instance().remove(this);
}

QStringList LogCapture::lines() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lines;
}

int LogCapture::count(const QString& line) const
{
    return static_cast<int>(lines().count(line));
}

void LogCapture::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
}

bool LogCapture::waitFor(const QString& line, int times, int limit) const
{
    return QTest::qWaitFor([&] { return count(line) >= times; }, limit);
}

void LogCapture::take(const QString& line)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.append(line);
}

} // namespace support
