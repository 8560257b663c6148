// The remote end of a local connection, which delivers given bytes in given pieces.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace support {

/// How the remote end delivers the bytes.
struct Delivery
{
    std::vector<std::string> pieces; ///< Each is sent after the reader has received the one before.
    bool closeAtTheEnd = false;
};

/// A separate thread that sends each piece only after the reader has emptied its socket and waits
/// for more, so that no receive spans a split and none waits longer than necessary. An empty socket
/// alone is not enough, because the recv() that emptied it checks for more bytes before it returns.
/// A reader that does not return within five seconds is stopped.
class PieceSender
{
public:
    /// Must be called by the reading thread. The descriptors and the delivery must outlive the
    /// object.
    PieceSender(int descriptor, int readersDescriptor, const Delivery& delivery);

    /// Returns the pieces that were not sent, joined. Must be called after the reader has returned.
    std::string finish();
    bool readerHadToBeStopped() const { return m_readerHadToBeStopped; }

private:
    void run();
    bool readerWaitsForMore() const;
    void stopReader();

    const int m_descriptor;
    const int m_readersDescriptor;
    const int m_readersThread;
    const Delivery& m_delivery;
    std::string m_unsent;
    std::atomic<bool> m_readerReturned = false;
    std::atomic<bool> m_readerHadToBeStopped = false;
    std::thread m_thread;
};

} // namespace support
