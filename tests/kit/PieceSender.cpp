#include "tests/kit/PieceSender.h"

#include "tests/kit/SleepWatch.h"

#include <chrono>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace support {

namespace {

constexpr std::chrono::seconds readingLimit{5};

} // namespace

PieceSender::PieceSender(int descriptor, int readersDescriptor, const Delivery& delivery)
    : m_descriptor(descriptor), m_readersDescriptor(readersDescriptor), m_readersThread(::gettid()),
      m_delivery(delivery), m_thread([this] { run(); })
{
}

std::string PieceSender::finish()
{
    m_readerReturned = true;
    m_thread.join();
    return m_unsent;
}

void PieceSender::run()
{
    const auto deadline = std::chrono::steady_clock::now() + readingLimit;
    const auto waitUntil = [this, deadline](auto&& condition) {
        while (!m_readerReturned && std::chrono::steady_clock::now() < deadline) {
            if (condition()) {
                return true;
            }
            std::this_thread::yield();
        }
        return false;
    };

    std::size_t next = 0;
    const std::vector<std::string>& pieces = m_delivery.pieces;
    while (next < pieces.size() &&
           (next == 0 || waitUntil([this] { return readerWaitsForMore(); }))) {
        const std::string& piece = pieces[next++];
        if (::send(m_descriptor, piece.data(), piece.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(piece.size())) {
            break;
        }
    }
    for (; next < pieces.size(); ++next) {
        m_unsent += pieces[next];
    }
    if (m_delivery.closeAtTheEnd) {
        ::shutdown(m_descriptor, SHUT_RDWR);
    }
    const auto slowly = [] {
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        return false;
    };
    waitUntil(slowly);
    if (!m_readerReturned) {
        stopReader();
    }
}

bool PieceSender::readerWaitsForMore() const
{
    int waiting = 0;
    return ::ioctl(m_readersDescriptor, FIONREAD, &waiting) == 0 && waiting == 0 &&
           threadIsAsleep(m_readersThread);
}

// Replaces the reader's descriptor with one that cannot be received from, so that a reader that
// retries forever gets an error and a waiting one wakes up.
void PieceSender::stopReader()
{
    m_readerHadToBeStopped = true;
    const int other = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup2(other, m_readersDescriptor);
    ::close(other);
    ::shutdown(m_descriptor, SHUT_RDWR);
}

} // namespace support
