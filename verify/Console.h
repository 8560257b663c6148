// Where the report goes: lines on standard output, and on a terminal the progress on standard
// error.
#pragma once

#include <string>

#include <QElapsedTimer>

namespace verify {

/// Writes all of a text to a descriptor. Returns 0, or the error that kept it from doing so.
int writeAll(int descriptor, const std::string& text);

/// Writes each line at once, so that a reader sees it and nothing is lost when the program is
/// interrupted.
class Console
{
public:
    Console();

    /// Adds the line end. After a failure nothing more is written; see error().
    void line(const std::string& text);
    /// The error that the first failed line had; 0 if all went out.
    int error() const { return m_error; }

    /// A message on standard error.
    void message(const std::string& text);

    /// Whether standard error is a terminal: only there a progress is shown.
    bool showsProgress() const { return m_terminal; }
    /// Whether it is time to show the progress again.
    bool progressIsDue() const;
    /// Shows the progress in place of the last one.
    void progress(const std::string& text);
    /// Takes the progress away.
    void clearProgress();

private:
    const bool m_terminal;
    bool m_shown = false;
    QElapsedTimer m_sinceShown;
    int m_error = 0;
};

/// From now on an interruption (Ctrl-C) writes the message to standard error and ends the program
/// with the status at once, whatever it is waiting for.
void endOnInterruption(const std::string& message, int status);

} // namespace verify
