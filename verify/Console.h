// The output of the report: lines on standard output, and the progress on standard error if it is a
// terminal.
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

    /// Writes a line, with its line ending, to standard output. After a failure nothing more is
    /// written; see error().
    void line(const std::string& text);
    /// Returns the error of the first failed line; 0 if everything was written.
    int error() const { return m_error; }

    /// Prints a message to standard error.
    void message(const std::string& text);

    /// Returns whether the progress is shown, which is the case if standard error is a terminal.
    bool showsProgress() const { return m_terminal; }
    /// Returns whether it is time to update the progress.
    bool progressIsDue() const;
    /// Replaces the displayed progress.
    void progress(const std::string& text);
    /// Removes the progress.
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
