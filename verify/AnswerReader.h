// Parses one HTTP answer as it arrives, with a limit for every part.
//
//   head     lines up to an empty one that ends in CR LF; interim (1xx) heads are skipped
//   body     up to the announced length, or in chunks, or up to the end of the connection
//
// Stricter than the window's parsers, which accept whatever the camera sends: an invalid answer
// must never be compared as if it were valid.
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
        Head,     ///< the head is not complete yet
        Body,     ///< the body is not complete yet
        Complete, ///< the answer is complete
        Refused,  ///< the status is not 200; see status()
        BadHead,  ///< the head is invalid
        BadBody,  ///< the chunked coding is invalid, or its lines exceed headLimit
        HeadTooLong,
        BodyTooLong, ///< longer than allowed, as announced or as received
        Cut,         ///< the connection ended before the answer did
        Stopped,     ///< a handler returned false
    };

    /// Handlers for an answer. If one returns false, parsing stops.
    struct Handlers
    {
        /// Called before the body with its announced length; with nothing if it is chunked or no
        /// length is announced.
        std::function<bool(std::optional<std::uint64_t>)> head;
        /// Called with each piece of the body.
        std::function<bool(std::string_view)> body;
    };

    /// Limit in bytes for all head lines together, and for all lines between two chunks or after
    /// the last one.
    static constexpr std::size_t headLimit = 65536;

    AnswerReader(std::uint64_t bodyLimit, Handlers handlers);

    /// Parses received bytes. Bytes after a complete answer only set hasMore().
    void receive(std::string_view bytes);
    /// Handles the end of the connection: a body that lasts until then is complete, any other
    /// unfinished answer is cut.
    void closed();

    State state() const { return m_state; }
    bool ended() const { return m_state != State::Head && m_state != State::Body; }
    /// Returns whether bytes followed a complete answer.
    bool hasMore() const { return m_more; }
    /// Returns the status of the last head.
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
    std::size_t m_lineBytes = 0; // bytes that count towards headLimit
    bool m_statusRead = false;
    int m_status = 0;
    bool m_chunked = false;
    std::optional<std::uint64_t> m_announced;
    std::uint64_t m_left = 0; // bytes left of the body or chunk
    std::uint64_t m_received = 0;
    bool m_more = false;
};

} // namespace verify
