// Reads one HTTP answer as it arrives, bounded in every part.
//
//   head     lines that end in CR LF, then an empty one; interim (1xx) heads are skipped
//   body     up to the announced length, or in chunks, or up to the end of the connection
//
// Stricter than the window's readers, which follow the camera wherever it goes: what is not
// understood must never pass for a comparison.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace verify {

class AnswerReader
{
public:
    enum class State {
        Head,     ///< waits for the rest of the head
        Body,     ///< waits for the rest of a body
        Complete, ///< the whole answer is here
        Refused,  ///< the status is not 200; see status()
        BadHead,  ///< the head is not understood
        BadBody,  ///< the chunks are not understood
        HeadTooLong,
        BodyTooLong, ///< longer than allowed, by its announcement or by what arrived
        Cut,         ///< the connection ended before the answer did
        Stopped,     ///< a handler has seen enough
    };

    /// What is done with an answer. A handler that returns false ends the reading.
    struct Handlers
    {
        /// Gets the announced length, if there is one, before any of the body.
        std::function<bool(std::optional<std::uint64_t>)> head;
        /// Gets the body piece by piece.
        std::function<bool(std::string_view)> body;
    };

    /// Bytes of all head lines together, and of the lines around the chunks.
    static constexpr std::size_t headLimit = 65536;

    AnswerReader(std::uint64_t bodyLimit, Handlers handlers);

    /// Takes what has arrived. Of what follows the end of the answer only hasMore() knows.
    void receive(std::string_view bytes);
    /// The connection has ended.
    void closed();

    State state() const { return m_state; }
    bool ended() const { return m_state != State::Head && m_state != State::Body; }
    /// Whether anything followed the end of the answer.
    bool hasMore() const { return m_more; }
    /// Status of the last head.
    int status() const { return m_status; }

private:
    enum class Part { HeadLine, ChunkSize, ChunkData, ChunkEnd, Trailer, Length, UntilClosed };

    bool inLine() const;
    void takeLine(std::string_view& bytes);
    void lineRead(std::string_view line);
    void headLine(std::string_view line);
    void statusLine(std::string_view line);
    void field(std::string_view line);
    void headComplete();
    void chunkSize(std::string_view line);
    void takeBody(std::string_view& bytes);

    const std::uint64_t m_bodyLimit;
    const Handlers m_handlers;
    State m_state = State::Head;
    Part m_part = Part::HeadLine;
    std::string m_line;
    std::size_t m_lineBytes = 0; // of all lines
    bool m_statusRead = false;
    int m_status = 0;
    bool m_chunked = false;
    std::optional<std::uint64_t> m_announced;
    std::uint64_t m_left = 0; // of the body, or of the chunk
    std::uint64_t m_received = 0;
    bool m_more = false;
};

} // namespace verify
