// The other end of a local connection, which delivers given bytes in given pieces.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace support {

/// How the other end delivers.
struct Delivery
{
    std::vector<std::string> pieces; ///< Each is sent when the one before has been received.
    bool closeAtTheEnd = false;
};

/// Sends from a thread of its own, a piece only once the reader has taken the one before out of its
/// socket and waits for more: then no receive can see across the cut, and none waits longer than it
/// must. An empty socket alone would not do, since the receive that emptied it looks once more
/// before it returns. A reader that does not return within five seconds is stopped.
class PieceSender
{
public:
    /// To be made by the thread that reads. All three outlive the object.
    PieceSender(int descriptor, int readersDescriptor, const Delivery& delivery);

    /// To be called when the reader has returned. What the sender had not sent yet.
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
