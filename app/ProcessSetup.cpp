#include "app/ProcessSetup.h"

#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace app {

namespace {

/// The lower ones are open by then, so the lowest free descriptor is this one.
void openIfClosed(int descriptor, int mode)
{
    if (::fcntl(descriptor, F_GETFD) == -1) {
        static_cast<void>(::open("/dev/null", mode));
    }
}

} // namespace

void setUpProcess()
{
    openIfClosed(STDIN_FILENO, O_RDONLY);
    openIfClosed(STDOUT_FILENO, O_WRONLY);
    openIfClosed(STDERR_FILENO, O_WRONLY);
    std::signal(SIGPIPE, SIG_IGN);
    rlimit descriptors{};
    if (::getrlimit(RLIMIT_NOFILE, &descriptors) == 0) {
        descriptors.rlim_cur = descriptors.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &descriptors);
    }
}

} // namespace app
