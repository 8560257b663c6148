// A file that another program holds a lease on, as a file server does for its clients.
#pragma once

#include <sys/types.h>

#include <QByteArray>

namespace support {

/// A child process with a read lease on a file: opening the file for writing waits until the child
/// gives the lease up, at most as long as the system grants it. It does so when this object ends.
class Lease
{
public:
    explicit Lease(const QByteArray& path);
    ~Lease();
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;

    /// Returns whether the system granted the lease.
    bool taken() const { return m_taken; }

    /// Waits until somebody opens the file for writing. Returns false after five seconds.
    bool waitUntilWanted() const;

    void giveUp();

private:
    pid_t m_child;
    int m_news;    // what the child reports
    int m_control; // closed to end it
    bool m_taken;
};

} // namespace support
