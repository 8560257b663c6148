// A file on which another program holds a lease, as a file server does for its clients.
#pragma once

#include <sys/types.h>

#include <QByteArray>

namespace support {

/// A child process with a read lease on a file: opening the file for writing blocks until the child
/// gives up the lease, or until the system's time limit. The lease ends with this object.
class Lease
{
public:
    explicit Lease(const QByteArray& path);
    ~Lease();
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;

    /// Returns whether the system granted the lease.
    bool taken() const { return m_taken; }

    /// Waits until a thread or process tries to open the file for writing. Returns false after five
    /// seconds.
    bool waitUntilWanted() const;

    void giveUp();

private:
    pid_t m_child;
    int m_news;    // reports from the child
    int m_control; // closed to end the child
    bool m_taken;
};

} // namespace support
