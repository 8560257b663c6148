#include "tests/calls/FailingCall.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <map>
#include <mutex>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

// The linker option --wrap redirects calls of X in our objects to __wrap_X; __real_X is X.
int realSocket(int domain, int type, int protocol) asm("__real_socket");
int realBind(int descriptor, const sockaddr* address, socklen_t size) asm("__real_bind");
int realConnect(int descriptor, const sockaddr* address, socklen_t size) asm("__real_connect");
ssize_t realSend(int descriptor, const void* data, size_t size, int flags) asm("__real_send");
ssize_t realRecv(int descriptor, void* data, size_t size, int flags) asm("__real_recv");
ssize_t realRead(int descriptor, void* data, size_t size) asm("__real_read");
ssize_t realWrite(int descriptor, const void* data, size_t size) asm("__real_write");
int realOpen(const char* path, int flags, ...) asm("__real_open");
int realMkdir(const char* path, mode_t mode) asm("__real_mkdir");
int realGetsockname(int descriptor, sockaddr* address, socklen_t* size) asm("__real_getsockname");

int wrappedSocket(int domain, int type, int protocol) asm("__wrap_socket");
int wrappedBind(int descriptor, const sockaddr* address, socklen_t size) asm("__wrap_bind");
int wrappedConnect(int descriptor, const sockaddr* address, socklen_t size) asm("__wrap_connect");
ssize_t wrappedSend(int descriptor, const void* data, size_t size, int flags) asm("__wrap_send");
ssize_t wrappedRecv(int descriptor, void* data, size_t size, int flags) asm("__wrap_recv");
ssize_t wrappedRead(int descriptor, void* data, size_t size) asm("__wrap_read");
ssize_t wrappedWrite(int descriptor, const void* data, size_t size) asm("__wrap_write");
int wrappedOpen(const char* path, int flags, ...) asm("__wrap_open");
int wrappedMkdir(const char* path, mode_t mode) asm("__wrap_mkdir");
int wrappedGetsockname(int descriptor, sockaddr* address,
                       socklen_t* size) asm("__wrap_getsockname");

namespace calls {

namespace {

enum Call : std::size_t {
    Socket,
    Bind,
    Connect,
    Send,
    Recv,
    Read,
    Write,
    Open,
    Mkdir,
    GetSockName
};

constexpr int noDescriptor = -1;

enum class Comes { Anywhere, FromSockets, FromFiles };

struct Error
{
    int number;
    Comes comes;
    bool endsConnection; // the socket is unusable afterwards
};

const std::map<std::string, Error> knownErrors = {
    {"EACCES", {EACCES, Comes::Anywhere, false}},
    {"EADDRINUSE", {EADDRINUSE, Comes::Anywhere, false}},
    {"EADDRNOTAVAIL", {EADDRNOTAVAIL, Comes::Anywhere, false}},
    {"ECONNREFUSED", {ECONNREFUSED, Comes::Anywhere, false}},
    {"ECONNRESET", {ECONNRESET, Comes::FromSockets, true}},
    {"EDQUOT", {EDQUOT, Comes::FromFiles, false}},
    {"EHOSTUNREACH", {EHOSTUNREACH, Comes::Anywhere, false}},
    {"EINTR", {EINTR, Comes::Anywhere, false}},
    {"EIO", {EIO, Comes::FromFiles, false}},
    {"EMFILE", {EMFILE, Comes::Anywhere, false}},
    {"ENETUNREACH", {ENETUNREACH, Comes::Anywhere, false}},
    {"ENFILE", {ENFILE, Comes::Anywhere, false}},
    {"ENOBUFS", {ENOBUFS, Comes::Anywhere, false}},
    {"ENOMEM", {ENOMEM, Comes::Anywhere, false}},
    {"ENOSPC", {ENOSPC, Comes::FromFiles, false}},
    {"EPIPE", {EPIPE, Comes::FromSockets, true}},
    {"EROFS", {EROFS, Comes::Anywhere, false}},
    {"ETIMEDOUT", {ETIMEDOUT, Comes::Anywhere, true}},
};

// Set before any thread starts.
std::size_t failingCall = names.size();
int failingNumber = 0;
Error failure{};

std::atomic<bool> failed{false};
std::array<std::atomic<int>, names.size()> made{};
std::mutex pathsGuard;
std::vector<std::string> givenPaths;
std::atomic<bool> pathsExist{true};
/// With coverage, the counters are written to files after givenPaths has been destroyed.
const struct EndOfPaths
{
    ~EndOfPaths() { pathsExist = false; }
} endOfPaths;

bool canComeFrom(int descriptor)
{
    struct stat properties
    {
    };
    if (failure.comes == Comes::Anywhere || ::fstat(descriptor, &properties) != 0) {
        return true;
    }
    return S_ISSOCK(properties.st_mode) == (failure.comes == Comes::FromSockets);
}

/// Leaves the socket as the real error would: later receives return no data, not even data that had
/// already arrived.
void endConnection(int descriptor)
{
    ::shutdown(descriptor, SHUT_RDWR);
    std::array<char, 4096> dropped;
    while (realRecv(descriptor, dropped.data(), dropped.size(), MSG_DONTWAIT) > 0) {
    }
}

/// Counts a call. Returns true and sets errno if this is the call to fail.
bool fails(Call call, int descriptor)
{
    if (++made[call] != failingNumber || call != failingCall || !canComeFrom(descriptor)) {
        return false;
    }
    failed = true;
    if (failure.endsConnection && call != Connect) {
        endConnection(descriptor);
    }
    errno = failure.number;
    return true;
}

void notePath(const char* path)
{
    const std::lock_guard<std::mutex> lock(pathsGuard);
    if (pathsExist) {
        givenPaths.emplace_back(path);
    }
}

} // namespace

bool failFromNowOn(const std::string& name, int number, const std::string& error)
{
    const auto* const found = std::find(names.begin(), names.end(), name);
    const auto known = knownErrors.find(error);
    if (found == names.end() || known == knownErrors.end()) {
        return false;
    }
    failingCall = static_cast<std::size_t>(found - names.begin());
    failingNumber = number;
    failure = known->second;
    return true;
}

bool hasFailed()
{
    return failed;
}

std::array<int, names.size()> counts()
{
    std::array<int, names.size()> numbers{};
    std::copy(made.begin(), made.end(), numbers.begin());
    return numbers;
}

std::vector<std::string> paths()
{
    const std::lock_guard<std::mutex> lock(pathsGuard);
    return givenPaths;
}

} // namespace calls

using namespace calls;

int wrappedSocket(int domain, int type, int protocol)
{
    return fails(Socket, noDescriptor) ? -1 : realSocket(domain, type, protocol);
}

int wrappedBind(int descriptor, const sockaddr* address, socklen_t size)
{
    return fails(Bind, descriptor) ? -1 : realBind(descriptor, address, size);
}

int wrappedConnect(int descriptor, const sockaddr* address, socklen_t size)
{
    if (!fails(Connect, descriptor)) {
        return realConnect(descriptor, address, size);
    }
    if (failure.number == EINTR) {
        // Only the wait is interrupted: the attempt goes on, and the next call finds it completed.
        realConnect(descriptor, address, size);
        errno = EINTR;
    }
    return -1;
}

ssize_t wrappedSend(int descriptor, const void* data, size_t size, int flags)
{
    return fails(Send, descriptor) ? -1 : realSend(descriptor, data, size, flags);
}

ssize_t wrappedRecv(int descriptor, void* data, size_t size, int flags)
{
    return fails(Recv, descriptor) ? -1 : realRecv(descriptor, data, size, flags);
}

ssize_t wrappedRead(int descriptor, void* data, size_t size)
{
    return fails(Read, descriptor) ? -1 : realRead(descriptor, data, size);
}

ssize_t wrappedWrite(int descriptor, const void* data, size_t size)
{
    return fails(Write, descriptor) ? -1 : realWrite(descriptor, data, size);
}

int wrappedOpen(const char* path, int flags, ...)
{
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list more;
        va_start(more, flags);
        mode = va_arg(more, mode_t);
        va_end(more);
    }
    notePath(path);
    return fails(Open, noDescriptor) ? -1 : realOpen(path, flags, mode);
}

int wrappedMkdir(const char* path, mode_t mode)
{
    notePath(path);
    return fails(Mkdir, noDescriptor) ? -1 : realMkdir(path, mode);
}

int wrappedGetsockname(int descriptor, sockaddr* address, socklen_t* size)
{
    return fails(GetSockName, descriptor) ? -1 : realGetsockname(descriptor, address, size);
}
