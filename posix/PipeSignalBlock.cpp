#include "posix/PipeSignalBlock.h"

#include <cerrno>
#include <ctime>

#include <pthread.h>

namespace sys {

PipeSignalBlock::PipeSignalBlock()
{
    ::sigemptyset(&m_pipe);
    ::sigaddset(&m_pipe, SIGPIPE);
    sigset_t pending;
    ::sigpending(&pending);
    m_wasPending = ::sigismember(&pending, SIGPIPE) == 1;
    ::pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
}

PipeSignalBlock::~PipeSignalBlock()
{
    const int error = errno;
    if (!m_wasPending) {
        const timespec atOnce{};
        ::sigtimedwait(&m_pipe, nullptr, &atOnce);
    }
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    errno = error;
}

} // namespace sys
