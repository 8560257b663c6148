#include "posix/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace sys {

namespace {

/// Opens the null device as this descriptor if it is closed. All lower descriptors must be open, so
/// that this is the lowest free one.
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
