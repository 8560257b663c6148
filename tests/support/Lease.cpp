#include "tests/support/Lease.h"

#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QtGlobal>

namespace support {

namespace {

constexpr char granted = 'g';
constexpr char wanted = 'w';

int news = -1; // the child's end

void report(char what)
{
    static_cast<void>(!::write(news, &what, 1));
}

/// The child's life. It calls only what a forked process with threads may.
[[noreturn]] void hold(const char* path, int control)
{
    struct sigaction action = {};
    action.sa_handler = [](int) { report(wanted); };
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGIO, &action, nullptr);
    const int file = ::open(path, O_RDONLY);
    if (::fcntl(file, F_SETLEASE, F_RDLCK) == 0) {
        report(granted);
        char byte = 0;
        static_cast<void>(!::read(control, &byte, 1));
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
        news = newsEnds[1];
        hold(path.constData(), controlEnds[0]);
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
