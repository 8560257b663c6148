// A process that may open nothing more.
#pragma once

#include <sys/resource.h>

namespace support {

/// Forbids new descriptors while it lives.
class NoDescriptorsLeft
{
public:
    NoDescriptorsLeft()
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit none{0, m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptorsLeft() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    NoDescriptorsLeft(const NoDescriptorsLeft&) = delete;
    NoDescriptorsLeft& operator=(const NoDescriptorsLeft&) = delete;

private:
    rlimit m_before{};
};

} // namespace support
