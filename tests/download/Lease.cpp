#include "tests/download/Lease.h"

#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QtGlobal>

namespace support {

namespace {

constexpr char granted = 'g';
constexpr char wanted = 'w';

void report(int news, char what)
{
    static_cast<void>(!::write(news, &what, 1));
}

/// Runs in the child. Calls only functions that are allowed after fork() in a process with threads,
/// and uses no signal handler, which a sanitizer would delay.
[[noreturn]] void hold(const char* path, int news, int control)
{
    sigset_t broken;
    ::sigemptyset(&broken);
    ::sigaddset(&broken, SIGIO);
    ::sigprocmask(SIG_BLOCK, &broken, nullptr);
    const int file = ::open(path, O_RDONLY);
    if (::fcntl(file, F_SETLEASE, F_RDLCK) == 0) {
        report(news, granted);
        pollfd ready[] = {{control, POLLIN, 0}, {::signalfd(-1, &broken, 0), POLLIN, 0}};
        while (::poll(ready, 2, -1) >= 0 && ready[0].revents == 0) {
            report(news, wanted);
            ready[1].fd = -1; // one report is enough
        }
        ::fcntl(file, F_SETLEASE, F_UNLCK);
    }
    ::_exit(0);
}

bool waitFor(int descriptor, char what)
{
    pollfd ready{descriptor, POLLIN, 0};
    char byte = 0;
    return ::poll(&ready, 1, 5000) == 1 && ::read(descriptor, &byte, 1) == 1 && byte == what;
}

} // namespace

Lease::Lease(const QByteArray& path)
{
    int newsEnds[2];
    int controlEnds[2];
    if (::pipe2(newsEnds, O_CLOEXEC) != 0 || ::pipe2(controlEnds, O_CLOEXEC) != 0) {
        qFatal("no pipe");
    }
    m_child = ::fork();
    if (m_child == 0) {
        ::close(controlEnds[1]);
        hold(path.constData(), newsEnds[1], controlEnds[0]);
    }
    ::close(newsEnds[1]);
    ::close(controlEnds[0]);
    m_news = newsEnds[0];
    m_control = controlEnds[1];
    m_taken = waitFor(m_news, granted);
}

Lease::~Lease()
{
    giveUp();
    ::close(m_news);
    ::waitpid(m_child, nullptr, 0);
}

bool Lease::waitUntilWanted() const
{
    return waitFor(m_news, wanted);
}

void Lease::giveUp()
{
    if (m_control >= 0) {
        ::close(m_control);
        m_control = -1;
    }
}

} // namespace support
