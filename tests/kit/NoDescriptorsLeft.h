// Prevents a process from opening descriptors.
#pragma once

#include <sys/resource.h>

namespace support {

/// A limit that prevents this process from opening descriptors while this object exists.
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
