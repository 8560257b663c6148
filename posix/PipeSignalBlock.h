// Writing to a closed connection without SIGPIPE.
#pragma once

#include <csignal>

namespace sys {

/// A scope in which writing to a peer that has closed the connection fails in this thread without
/// SIGPIPE, which would end a program that does not ignore the signal. Leaving it preserves errno.
class PipeSignalBlock
{
public:
    PipeSignalBlock();
    ~PipeSignalBlock();
    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;

private:
    sigset_t m_pipe;
    sigset_t m_before;
    bool m_wasPending;
};

} // namespace sys
