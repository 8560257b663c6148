// Standard output, seen by a test.
#pragma once

#include "tests/support/LogCapture.h"

#include <QByteArray>

namespace support {

/// Collects what reaches descriptor 1 from its construction to its end, whoever writes it; what
/// the C library still buffers is not there yet. The debug log is kept out of it. At its end
/// everything collected goes on to the real standard output, so that no failure message is lost.
class StdoutCapture
{
public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    QByteArray text() const;

    /// Waits until the text holds `part`; events are processed meanwhile. False after the limit in
    /// milliseconds.
    bool waitFor(const QByteArray& part, int limit = 5000) const;

    /// The debug log of the same time.
    const LogCapture& log() const { return m_log; }

private:
    LogCapture m_log;
    int m_collected; // a file without a name
    int m_real;
};

} // namespace support
