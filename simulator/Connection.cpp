#include "simulator/Connection.h"

#include "simulator/Text.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <poll.h>
#include <sys/socket.h>

namespace simulator {

namespace {

constexpr std::size_t pieceSize = 65'536;
/// Maximum number of bytes that a connection sends of one step before other connections are served.
constexpr std::size_t turnSize = 1'048'576;
/// Maximum number of sent bytes that a journal line contains. Of a longer run, and of recordings,
/// it contains only the count and the checksum, except with --journal-full.
constexpr std::uint64_t longestNoted = 65'536;
constexpr Milliseconds lingerTime{2'000};
constexpr Milliseconds ratePause{10};

} // namespace

Connection::Connection(FileDescriptor socket, ConnectionName name, Journal& journal)
    : m_socket(std::move(socket)), m_name(std::move(name)), m_journal(&journal)
{
}

short Connection::wantedEvents() const
{
    return static_cast<short>((m_peerEnded ? 0 : POLLIN) | (m_blocked ? POLLOUT : 0));
}

void Connection::readable()
{
    if (finished() || m_peerEnded) {
        return;
    }
    char buffer[16'384];
    const ssize_t count = ::recv(m_socket.get(), buffer, sizeof buffer, MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    if (m_lingering) {
        // Closed by us and already logged, so the peer's end is not logged.
        if (count <= 0) {
            m_socket.reset();
        }
        return;
    }
    if (count < 0) {
        peerEnded("reset");
        return;
    }
    if (count > 0) {
        const std::string_view bytes(buffer, static_cast<std::size_t>(count));
        m_journal->write(line("received").bytes(bytes));
        received(bytes);
        return;
    }
    m_peerEnded = true;
    if (m_steps.empty() || m_steps.front().kind == Step::Kind::Hold) {
        peerEnded("end");
    }
}

void Connection::advance(TimePoint now)
{
    if (m_lingering && now >= m_lingerEnd) {
        m_socket.reset();
    }
    if (finished() || m_lingering) {
        return;
    }
    m_blocked = false;
    m_wake = never;
    work(now);
    while (!finished() && !m_lingering && !m_steps.empty()) {
        // taken out of the queue first, because a step that ends the connection empties the queue
        Step step = std::move(m_steps.front());
        m_steps.pop_front();
        if (perform(step, now) == Progress::Later) {
            m_steps.push_front(std::move(step));
            break;
        }
        m_sent = 0;
        m_checksum = 0;
        m_rateStart = never;
        m_pauseEnd = never;
    }
    if (!finished() && !m_lingering && m_peerEnded && m_steps.empty()) {
        peerEnded("end");
    }
}

Connection::Progress Connection::perform(Step& step, TimePoint now)
{
    switch (step.kind) {
    case Step::Kind::Send:
        return send(step.part, now);
    case Step::Kind::Pause:
        if (m_pauseEnd == never) {
            m_pauseEnd = now + step.pause;
        }
        m_wake = m_pauseEnd;
        return now >= m_pauseEnd ? Progress::Done : Progress::Later;
    case Step::Kind::Hold:
        return step.held() ? Progress::Later : Progress::Done;
    case Step::Kind::Call:
        step.call();
        return Progress::Done;
    case Step::Kind::HalfClose:
        m_journal->write(line("half-close"));
        ::shutdown(m_socket.get(), SHUT_WR);
        return Progress::Done;
    case Step::Kind::Close:
        close("end");
        return Progress::Done;
    case Step::Kind::Reset:
        reset("reset");
        return Progress::Done;
    }
    return Progress::Done;
}

std::size_t Connection::allowance(const Part& part, TimePoint now)
{
    const std::uint64_t left = part.size() - m_sent;
    if (m_singleBytes) {
        return static_cast<std::size_t>(std::min<std::uint64_t>(left, 1));
    }
    if (!part.content || m_rate == 0) {
        return static_cast<std::size_t>(std::min<std::uint64_t>(left, turnSize));
    }
    if (m_rateStart == never) {
        m_rateStart = now - ratePause;
        m_rateSent = 0;
    }
    const std::chrono::duration<double> elapsed = now - m_rateStart;
    const auto due = static_cast<std::uint64_t>(elapsed.count() * static_cast<double>(m_rate));
    const std::uint64_t allowed = due > m_rateSent ? due - m_rateSent : 0;
    return static_cast<std::size_t>(std::min({left, allowed, std::uint64_t{turnSize}}));
}

Connection::Progress Connection::send(const Part& part, TimePoint now)
{
    std::size_t turn = allowance(part, now);
    // no pause after a full turn, otherwise high rates would not be reached
    const bool paced = part.content && m_rate != 0 && turn < turnSize;
    std::vector<char> buffer(part.content ? pieceSize : 0);
    while (turn > 0) {
        const char* bytes = part.bytes.data() + m_sent;
        std::size_t length = turn;
        if (part.content) {
            length = part.content->read(part.begin + m_sent, buffer.data(),
                                        std::min(turn, buffer.size()));
            bytes = buffer.data();
            if (length == 0) {
                noteSent(part);
                close("the recording's file has become shorter");
                return Progress::Done;
            }
        }
        const ssize_t count = ::send(m_socket.get(), bytes, length, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            m_blocked = errno == EAGAIN || errno == EWOULDBLOCK;
            if (!m_blocked) {
                noteSent(part);
                peerEnded("reset");
                return Progress::Done;
            }
            return Progress::Later;
        }
        const auto sent = static_cast<std::size_t>(count);
        m_checksum = crc32(m_checksum, {bytes, sent});
        if (m_journal->isFull()) {
            m_journal->write(line("sent").bytes({bytes, sent}));
        }
        m_sent += sent;
        m_rateSent += sent;
        turn -= sent;
    }
    if (m_sent == part.size()) {
        noteSent(part);
        return Progress::Done;
    }
    m_wake = now + (m_singleBytes ? m_byteGap : paced ? ratePause : Milliseconds(0));
    return Progress::Later;
}

void Connection::noteSent(const Part& part)
{
    if (m_sent == 0 || m_journal->isFull()) {
        return; // nothing was sent, or every write was already logged
    }
    JournalLine sent = line("sent");
    if (part.content || m_sent > longestNoted) {
        const char checksum[] = {static_cast<char>(m_checksum >> 24 & 0xFFU),
                                 static_cast<char>(m_checksum >> 16 & 0xFFU),
                                 static_cast<char>(m_checksum >> 8 & 0xFFU),
                                 static_cast<char>(m_checksum & 0xFFU)};
        sent.number("count", m_sent).text("crc32", hexText({checksum, sizeof checksum}));
    } else {
        sent.bytes(std::string_view(part.bytes).substr(0, static_cast<std::size_t>(m_sent)));
    }
    m_journal->write(sent);
}

TimePoint Connection::nextWake() const
{
    if (finished()) {
        return never;
    }
    return m_lingering ? m_lingerEnd : std::min(m_wake, nextWork());
}

void Connection::close(std::string_view reason)
{
    if (finished() || m_lingering) {
        return;
    }
    if (m_peerEnded) {
        finish(line("close").text("by", "device").text("reason", reason));
        return;
    }
    m_journal->write(line("close").text("by", "device").text("reason", reason));
    lingerThenClose();
}

void Connection::reset(std::string_view reason)
{
    if (finished() || m_lingering) {
        return;
    }
    const linger abrupt{1, 0};
    ::setsockopt(m_socket.get(), SOL_SOCKET, SO_LINGER, &abrupt, sizeof abrupt);
    finish(line("close").text("by", "device").text("reason", reason).text("how", "reset"));
}

void Connection::lingerThenClose()
{
    // Closing with unread bytes would reset the connection, and the peer could lose our answer.
    ::shutdown(m_socket.get(), SHUT_WR);
    m_steps.clear();
    m_lingering = true;
    m_blocked = false;
    m_lingerEnd = Clock::now() + lingerTime;
}

void Connection::finish(const JournalLine& close)
{
    m_journal->write(close);
    m_steps.clear();
    m_socket.reset();
}

void Connection::peerEnded(std::string_view reason)
{
    finish(line("close").text("by", "peer").text("reason", reason));
}

void Connection::queueBytes(std::string bytes)
{
    Step step{Step::Kind::Send};
    step.part = Part::literal(std::move(bytes));
    queue(std::move(step));
}

void Connection::queuePause(Milliseconds pause)
{
    Step step{Step::Kind::Pause};
    step.pause = pause;
    queue(std::move(step));
}

void Connection::setSingleBytes(Milliseconds gap)
{
    m_singleBytes = true;
    m_byteGap = gap;
}

JournalLine Connection::line(std::string_view event) const
{
    return {m_name.device, m_name.number, event};
}

} // namespace simulator
