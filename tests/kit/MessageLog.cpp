#include "tests/kit/MessageLog.h"

#include "tests/kit/LogCapture.h"

#include <algorithm>

#include <QCoreApplication>
#include <QMessageLogContext>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QThread>

namespace support {

namespace {

/// The start of a message that the offscreen platform prints for every fixed-size window and every
/// tool tip, and that no test needs to see.
const QString offscreenRemark = QStringLiteral("This plugin does not support ");

} // namespace

MessageLog& MessageLog::instance()
{
    static MessageLog log;
    return log;
}

void MessageLog::install()
{
    m_next = qInstallMessageHandler(handle);
}

QStringList MessageLog::uninstall()
{
    qInstallMessageHandler(m_next);
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stray;
}

void MessageLog::add(LogCapture* capture)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_captures.push_back(capture);
}

void MessageLog::remove(LogCapture* capture)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_captures.erase(std::remove(m_captures.begin(), m_captures.end(), capture), m_captures.end());
}

void MessageLog::handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    instance().take(type, context, text);
}

void MessageLog::take(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (text.startsWith(offscreenRemark)) {
        return;
    }
    if (type == QtDebugMsg || type == QtInfoMsg) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (LogCapture* capture : m_captures) {
            capture->take(text);
        }
        if (!m_captures.empty()) {
            return;
        }
    }
    m_next(type, context, text);
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        if (QThread::currentThread() == QCoreApplication::instance()->thread()) {
            QTest::qFail(qPrintable("unexpected message: " + text), __FILE__, __LINE__);
        } else {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_stray.append(text);
        }
    }
}

} // namespace support
