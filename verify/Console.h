// The output of the program: the report's lines on standard output, messages on standard error, and
// the progress on standard error if that is a terminal.
#pragma once

#include <string>

#include <QElapsedTimer>

namespace verify {

/// Writes the complete text to a descriptor. Returns 0 or errno.
int writeAll(int descriptor, const std::string& text);

/// The output streams. Each line is written immediately, so that a reader sees it and nothing is
/// lost if the program is interrupted.
class Console
{
public:
    Console();

    /// Writes a line, with its line ending, to standard output. After a failure no more lines are
    /// written; see error().
    void line(const std::string& text);
    /// Returns the errno of the first line that failed; 0 if all lines were written.
    int error() const { return m_error; }

    /// Prints a message to standard error.
    void message(const std::string& text);

    /// Returns whether the progress is shown, which is the case if standard error is a terminal.
    bool showsProgress() const { return m_terminal; }
    /// Returns whether the progress is shown at all and is due for an update.
    bool progressIsDue() const;
    /// Replaces the displayed progress.
    void progress(const std::string& text);
    /// Removes the displayed progress.
    void clearProgress();

private:
    const bool m_terminal;
    bool m_shown = false;
    QElapsedTimer m_sinceShown;
    int m_error = 0;
};

/// Makes an interruption (Ctrl-C) print the message to standard error and end the program with the
/// status immediately, whatever the program is waiting for.
void endOnInterruption(const std::string& message, int status);

} // namespace verify
