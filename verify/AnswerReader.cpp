#include "verify/AnswerReader.h"

#include "verify/Numbers.h"

#include <algorithm>
#include <utility>

namespace verify {

namespace {

constexpr int interimStatus = 100;
constexpr int finalStatus = 200;
constexpr std::string_view spaces = " \t";

char lowered(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool sameWord(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowered(a) == lowered(b); });
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(spaces);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

} // namespace

AnswerReader::AnswerReader(std::uint64_t bodyLimit, Handlers handlers)
    : m_bodyLimit(bodyLimit), m_handlers(std::move(handlers))
{
}

void AnswerReader::receive(std::string_view bytes)
{
    while (!bytes.empty() && !ended()) {
        if (inLine()) {
            takeLine(bytes);
        } else {
            takeBody(bytes);
        }
    }
    m_more = m_more || (m_state == State::Complete && !bytes.empty());
}

void AnswerReader::closed()
{
    if (!ended()) {
        m_state = m_part == Part::UntilClosed ? State::Complete : State::Cut;
    }
}

bool AnswerReader::inLine() const
{
    return m_part != Part::ChunkData && m_part != Part::Length && m_part != Part::UntilClosed;
}

// A line may end in LF alone, but only an empty line that ends in CR LF ends the head. Thus a head
// that ends in LF LF CR LF has the same end here as in the window's parsers.
void AnswerReader::takeLine(std::string_view& bytes)
{
    const std::size_t end = bytes.find('\n');
    const std::size_t count = end == std::string_view::npos ? bytes.size() : end + 1;
    m_lineBytes += count;
    if (m_lineBytes > headLimit) {
        m_state = m_state == State::Head ? State::HeadTooLong : State::BadBody;
        return;
    }
    m_line.append(bytes.substr(0, count));
    bytes.remove_prefix(count);
    if (end == std::string_view::npos) {
        return;
    }
    const std::string line = std::exchange(m_line, {});
    lineRead(line);
}

void AnswerReader::lineRead(std::string_view line)
{
    const bool endsProperly = line.size() >= 2 && line[line.size() - 2] == '\r';
    const std::string_view text = line.substr(0, line.size() - (endsProperly ? 2 : 1));
    switch (m_part) {
    case Part::HeadLine:
        if (text.empty() && !endsProperly) {
            return;
        }
        headLine(text);
        break;
    case Part::ChunkSize:
        chunkSize(text);
        break;
    case Part::ChunkEnd:
        if (!text.empty()) {
            m_state = State::BadBody;
        }
        m_part = Part::ChunkSize;
        break;
    default: // a trailer
        if (text.empty()) {
            m_state = State::Complete;
        }
        break;
    }
}

void AnswerReader::headLine(std::string_view line)
{
    if (!m_statusRead) {
        statusLine(line);
    } else if (line.empty()) {
        headComplete();
    } else {
        field(line);
    }
}

void AnswerReader::statusLine(std::string_view line)
{
    constexpr std::string_view protocol = "HTTP/1.";
    const std::size_t space = line.find(' ');
    const std::string_view code =
        space == std::string_view::npos ? std::string_view() : line.substr(space + 1, 3);
    const auto number = decimalNumber(code);
    const bool wordEnds = space + 4 >= line.size() || line[space + 4] == ' ';
    if (line.substr(0, protocol.size()) != protocol || code.size() != 3 || !number || !wordEnds ||
        *number < interimStatus) {
        m_state = State::BadHead;
        return;
    }
    m_statusRead = true;
    m_status = static_cast<int>(*number);
}

void AnswerReader::field(std::string_view line)
{
    const std::size_t colon = line.find(':');
    const std::string_view name = line.substr(0, colon);
    const std::string_view value =
        colon == std::string_view::npos ? std::string_view() : trimmed(line.substr(colon + 1));
    if (sameWord(name, "Content-Length")) {
        const auto length = decimalNumber(value);
        if (!length || (m_announced && *m_announced != *length)) {
            m_state = State::BadHead; // two different lengths, or one that is not a 64-bit number
            return;
        }
        m_announced = length;
    } else if (sameWord(name, "Transfer-Encoding")) {
        if (!sameWord(value, "chunked")) {
            m_state = State::BadHead;
            return;
        }
        m_chunked = true;
    }
}

void AnswerReader::headComplete()
{
    if (m_status < finalStatus) { // an interim answer: the final one follows
        m_statusRead = false;
        m_chunked = false;
        m_announced.reset();
        return;
    }
    if (m_status != finalStatus) {
        m_state = State::Refused;
        return;
    }
    if (m_chunked) {
        m_announced.reset(); // the chunk sizes determine the length
        m_lineBytes = 0;
        m_part = Part::ChunkSize;
    } else if (m_announced) {
        m_part = Part::Length;
        m_left = *m_announced;
    } else {
        m_part = Part::UntilClosed;
    }
    if (!m_handlers.head(m_announced)) {
        m_state = State::Stopped;
    } else if (m_announced && *m_announced > m_bodyLimit) {
        m_state = State::BodyTooLong;
    } else {
        m_state = m_announced && m_left == 0 ? State::Complete : State::Body;
    }
}

void AnswerReader::chunkSize(std::string_view line)
{
    const auto size = hexadecimalNumber(trimmed(line.substr(0, line.find(';'))));
    if (!size) {
        m_state = State::BadBody;
    } else if (*size > m_bodyLimit - m_received) {
        m_state = State::BodyTooLong;
    } else {
        m_left = *size;
        m_part = *size == 0 ? Part::Trailer : Part::ChunkData;
    }
}

void AnswerReader::takeBody(std::string_view& bytes)
{
    std::size_t count = bytes.size();
    if (m_part == Part::UntilClosed) {
        if (count > m_bodyLimit - m_received) {
            m_state = State::BodyTooLong;
            return;
        }
    } else {
        count = static_cast<std::size_t>(std::min<std::uint64_t>(count, m_left));
        m_left -= count;
    }
    m_received += count;
    const bool goOn = m_handlers.body(bytes.substr(0, count));
    bytes.remove_prefix(count);
    if (!goOn) {
        m_state = State::Stopped;
    } else if (m_part == Part::Length && m_left == 0) {
        m_state = State::Complete;
    } else if (m_part == Part::ChunkData && m_left == 0) {
        m_lineBytes = 0; // headLimit applies to the lines after each chunk
        m_part = Part::ChunkEnd;
    }
}

} // namespace verify
