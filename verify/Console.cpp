#include "verify/Console.h"

#include <cerrno>
#include <csignal>
#include <cstddef>

#include <sys/ioctl.h>
#include <unistd.h>

namespace verify {

namespace {

constexpr qint64 progressInterval = 200; // milliseconds
constexpr char clearLine[] = "\r\033[K";

// For the signal handler, which must not allocate memory.
std::string interruptionText;
int interruptionStatus = 0;

void interrupted(int)
{
    [[maybe_unused]] const ssize_t ignored =
        ::write(STDERR_FILENO, interruptionText.data(), interruptionText.size());
    ::_exit(interruptionStatus);
}

/// Returns the text or, if it has at least as many bytes as the terminal has columns, the beginning
/// that has fewer: a longer text could wrap to the next line. Does not split a UTF-8 character. If
/// the width of the terminal is unknown, returns the whole text.
std::string fitting(std::string text)
{
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 ||
        text.size() < size.ws_col) {
        return text;
    }
    std::size_t end = size.ws_col - 1U;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
        --end;
    }
    text.resize(end);
    return text;
}

} // namespace

int writeAll(int descriptor, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::write(descriptor, text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return errno;
        }
        done += static_cast<std::size_t>(count);
    }
    return 0;
}

Console::Console() : m_terminal(::isatty(STDERR_FILENO) == 1) {}

void Console::line(const std::string& text)
{
    clearProgress();
    if (m_error == 0) {
        m_error = writeAll(STDOUT_FILENO, text + "\n");
    }
}

void Console::message(const std::string& text)
{
    clearProgress();
    writeAll(STDERR_FILENO, text + "\n");
}

bool Console::progressIsDue() const
{
    return m_terminal && (!m_shown || m_sinceShown.hasExpired(progressInterval));
}

void Console::progress(const std::string& text)
{
    writeAll(STDERR_FILENO, clearLine + fitting(text));
    m_shown = true;
    m_sinceShown.start();
}

void Console::clearProgress()
{
    if (m_shown) {
        writeAll(STDERR_FILENO, clearLine);
        m_shown = false;
    }
}

void endOnInterruption(const std::string& message, int status)
{
    const bool terminal = ::isatty(STDERR_FILENO) == 1;
    interruptionText = (terminal ? "\n" : "") + message + "\n";
    interruptionStatus = status;
    struct sigaction action
    {
    };
    action.sa_handler = interrupted;
    ::sigaction(SIGINT, &action, nullptr);
}

} // namespace verify
