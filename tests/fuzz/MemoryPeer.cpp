#include "tests/fuzz/MemoryPeer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

fuzz::MemoryPeer* current = nullptr;

/// Number of receives that a parser may attempt after the connection has ended.
constexpr int patience = 64;

} // namespace

// The linker prescribes these names.
extern "C" {
ssize_t __real_recv(int descriptor, void* buffer, std::size_t limit, int flags)
    __attribute__((weak));
ssize_t __real_read(int descriptor, void* buffer, std::size_t limit) __attribute__((weak));
ssize_t __real_write(int descriptor, const void* bytes, std::size_t count) __attribute__((weak));

ssize_t __wrap_recv(int descriptor, void* buffer, std::size_t limit, int flags)
{
    if (descriptor == -1 && current != nullptr) {
        return current->receive(static_cast<char*>(buffer), limit);
    }
    return __real_recv(descriptor, buffer, limit, flags);
}

ssize_t __wrap_read(int descriptor, void* buffer, std::size_t limit)
{
    if (descriptor == -1 && current != nullptr) {
        return current->receive(static_cast<char*>(buffer), limit);
    }
    return __real_read(descriptor, buffer, limit);
}

ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t count)
{
    if (descriptor == -1 && current != nullptr) {
        current->take({static_cast<const char*>(bytes), count});
        return static_cast<ssize_t>(count);
    }
    return __real_write(descriptor, bytes, count);
}
}

namespace fuzz {

MemoryPeer::MemoryPeer()
{
    require(current == nullptr, "one peer at a time");
    current = this;
}

MemoryPeer::~MemoryPeer()
{
    current = nullptr;
}

ssize_t TextPeer::receive(char* buffer, std::size_t limit)
{
    const std::size_t count = std::min(std::min(limit, m_pieceSize), m_text.size() - m_received);
    if (count == 0) {
        require(++m_askedAtEnd <= patience, "reading ends when the connection has");
        errno = m_end == End::Failed ? ECONNRESET : 0;
        return m_end == End::Failed ? -1 : 0;
    }
    std::memcpy(buffer, m_text.data() + m_received, count);
    m_received += count;
    return static_cast<ssize_t>(count);
}

} // namespace fuzz
