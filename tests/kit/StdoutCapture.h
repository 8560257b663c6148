// Captures standard output.
#pragma once

#include "tests/kit/LogCapture.h"

#include <QByteArray>

namespace support {

/// A capture of everything written to descriptor 1 while this object exists, without bytes that the
/// C library still buffers and without the debug log. On destruction everything collected is
/// written to the real standard output, so that no failure message is lost.
class StdoutCapture
{
public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    QByteArray text() const;

    /// Waits, processing events, until the text contains `part`. Returns false after the limit in
    /// milliseconds.
    bool waitFor(const QByteArray& part, int limit = 5000) const;

    /// Returns the debug log captured during the same time.
    const LogCapture& log() const { return m_log; }

private:
    LogCapture m_log;
    int m_collected; // descriptor of an unnamed file
    int m_real;
};

} // namespace support
