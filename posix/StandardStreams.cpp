#include "posix/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace sys {

namespace {

/// The lower ones are open by then, so the lowest free descriptor is this one.
void openIfClosed(int descriptor, int mode)
{
    if (::fcntl(descriptor, F_GETFD) == -1) {
        static_cast<void>(::open("/dev/null", mode));
    }
}

} // namespace

void openClosedStandardStreams()
{
    openIfClosed(STDIN_FILENO, O_RDONLY);
    openIfClosed(STDOUT_FILENO, O_WRONLY);
    openIfClosed(STDERR_FILENO, O_WRONLY);
}

} // namespace sys
