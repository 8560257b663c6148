#include "app/ProcessSetup.h"

#include "posix/StandardStreams.h"

#include <csignal>

#include <sys/resource.h>

namespace app {

void setUpProcess()
{
    sys::openClosedStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);
    rlimit descriptors{};
    if (::getrlimit(RLIMIT_NOFILE, &descriptors) == 0) {
        descriptors.rlim_cur = descriptors.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &descriptors);
    }
}

} // namespace app
