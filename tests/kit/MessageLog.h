// Receives every Qt message while tests run.
#pragma once

#include <mutex>
#include <vector>

#include <QStringList>
#include <QtGlobal>

namespace support {

class LogCapture;

/// A message handler that runs before Qt Test's. Used by TestMain and LogCapture.
class MessageLog
{
public:
    static MessageLog& instance();

    void install();
    /// Restores the previous handler and returns the unexpected messages of other threads.
    QStringList uninstall();

    void add(LogCapture* capture);
    void remove(LogCapture* capture);

private:
    MessageLog() = default;
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);
    void take(QtMsgType type, const QMessageLogContext& context, const QString& text);

    std::mutex m_mutex;
    QtMessageHandler m_next = nullptr;
    std::vector<LogCapture*> m_captures;
    QStringList m_stray;
};

} // namespace support
