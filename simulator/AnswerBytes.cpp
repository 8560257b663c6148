#include "simulator/AnswerBytes.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace simulator {

namespace {

constexpr std::uint64_t chunkSize = 4'096;
constexpr std::uint64_t recordingChunkSize = 65'536;
constexpr std::uint64_t garbageSize = 4'096;

using Headers = std::vector<std::pair<std::string, std::string>>;

bool isChunked(const FaultScope& faults, std::uint64_t exchange)
{
    const auto from = faults.number(Fault::Chunked);
    return (from && exchange >= static_cast<std::uint64_t>(*from)) ||
           faults.active(Fault::ChunkExtension) || faults.active(Fault::ChunkBadHex) ||
           faults.active(Fault::ChunkSize) || faults.active(Fault::ChunkNoLast) ||
           faults.active(Fault::ChunkTrailers);
}

Message chunkedBody(Message body, const FaultScope& faults)
{
    const bool recording = !body.empty() && body.front().content;
    Message chunked;
    bool first = true;
    for (std::uint64_t left = messageSize(body); left > 0; left = messageSize(body)) {
        const std::uint64_t size = std::min(left, recording ? recordingChunkSize : chunkSize);
        char line[32];
        std::snprintf(line, sizeof line, "%llx", static_cast<unsigned long long>(size));
        std::string sizeLine = line;
        if (first && faults.active(Fault::ChunkBadHex)) {
            sizeLine = "zz";
        }
        if (first) {
            sizeLine = faults.value(Fault::ChunkSize).value_or(sizeLine);
        }
        if (faults.active(Fault::ChunkExtension)) {
            sizeLine += ";name=value";
        }
        append(chunked, Part::literal(sizeLine + "\r\n"));
        for (Part& part : takeFront(body, size)) {
            append(chunked, std::move(part));
        }
        append(chunked, Part::literal("\r\n"));
        first = false;
    }
    if (!faults.active(Fault::ChunkNoLast)) {
        const bool trailers = faults.active(Fault::ChunkTrailers);
        append(chunked,
               Part::literal(trailers ? "0\r\nX-First: 1\r\nX-Second: 2\r\n\r\n" : "0\r\n\r\n"));
    }
    return chunked;
}

std::string lengthText(const FaultScope& faults, std::uint64_t size)
{
    const long long announced =
        static_cast<long long>(size) + faults.number(Fault::LengthOffset).value_or(0);
    return faults.value(Fault::LengthText).value_or(std::to_string(std::max(announced, 0LL)));
}

Headers headers(const Answer& answer, const FaultScope& faults, std::uint64_t size, bool chunked)
{
    Headers lines;
    std::string type = answer.contentType;
    if (faults.active(Fault::LongType)) {
        type = "application/" + std::string(200 - 12, 'x');
    }
    lines.emplace_back("Content-Type", type);
    if (chunked) {
        lines.emplace_back("Transfer-Encoding", "chunked");
    } else if (!faults.active(Fault::NoLength)) {
        lines.emplace_back("Content-Length", lengthText(faults, size));
    }
    lines.emplace_back("Connection", "close");
    if (const auto length = faults.number(Fault::LongHeader)) {
        // the length includes name, colon, space and CR LF
        lines.emplace_back("X-Long", std::string(static_cast<std::size_t>(*length) - 10, 'x'));
    }
    for (long long i = 1; i <= faults.number(Fault::ManyHeaders).value_or(0); ++i) {
        lines.emplace_back("X-Header-" + std::to_string(i), "value");
    }
    if (faults.active(Fault::LowerCaseNames)) {
        for (auto& line : lines) {
            std::transform(line.first.begin(), line.first.end(), line.first.begin(), [](char c) {
                return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            });
        }
    }
    return lines;
}

std::string headText(const Answer& answer, const FaultScope& faults, const Headers& lines)
{
    const std::string lineEnd = faults.active(Fault::BareLf) ? "\n" : "\r\n";
    std::string text;
    if (faults.active(Fault::ContinueFirst)) {
        text = "HTTP/1.1 100 Continue" + lineEnd + lineEnd;
    }
    text += "HTTP/1.1 " + std::to_string(answer.status);
    text += faults.active(Fault::NoReason) ? lineEnd : " " + answer.reason + lineEnd;
    for (const auto& [name, value] : lines) {
        text += name;
        text += ": ";
        text += value;
        text += lineEnd;
    }
    if (faults.active(Fault::OddHeadEnd)) {
        text.erase(text.size() - lineEnd.size());
        return text + "\n\n\r\n";
    }
    return text + lineEnd;
}

void cutAt(Message& message, std::uint64_t size)
{
    message = takeFront(message, size);
}

/// Applies the faults that end the answer early.
void cut(AnswerBytes& bytes, const FaultScope& faults)
{
    struct Place
    {
        Fault close;
        Fault reset;
        std::uint64_t head;
        std::uint64_t body;
    };
    const std::uint64_t head = messageSize(bytes.head);
    const std::uint64_t body = messageSize(bytes.body);
    const auto within = [body](std::optional<long long> wanted) {
        const auto size = static_cast<std::uint64_t>(wanted.value_or(0));
        return size < body ? size : body / 2;
    };
    const auto middle =
        within(faults.number(Fault::ResetMidBody) ? faults.number(Fault::ResetMidBody)
                                                  : faults.number(Fault::CloseMidBody));
    const Place places[] = {{Fault::CloseBeforeHead, Fault::ResetBeforeHead, 0, 0},
                            {Fault::CloseInHead, Fault::ResetInHead, head / 2, 0},
                            {Fault::CloseAfterHead, Fault::ResetAfterHead, head, 0},
                            {Fault::CloseMidBody, Fault::ResetMidBody, head, middle}};
    for (const Place& place : places) {
        const bool reset = faults.active(place.reset);
        if (reset || faults.active(place.close)) {
            cutAt(bytes.head, place.head);
            cutAt(bytes.body, place.body);
            bytes.end = reset ? AnswerEnd::Reset : AnswerEnd::Close;
            return;
        }
    }
}

} // namespace

AnswerBytes answerBytes(Answer answer, const FaultScope& faults, std::uint64_t exchange)
{
    AnswerBytes bytes;
    if (answer.withoutAnswer) {
        bytes.end = AnswerEnd::Reset;
        return bytes;
    }
    if (faults.active(Fault::Garbage)) {
        append(bytes.body,
               Part{{}, std::make_shared<NoiseContent>("", garbageSize, 0), 0, garbageSize});
        return bytes;
    }
    if (const auto status = faults.number(Fault::Status)) {
        if (*status >= 400) {
            answer = errorAnswer(static_cast<int>(*status));
        }
        answer.status = static_cast<int>(*status);
    }
    if (faults.active(Fault::EmptyAnswer)) {
        answer.body.clear();
        answer.announced.reset();
    }
    const bool chunked = isChunked(faults, exchange);
    const Headers lines =
        headers(answer, faults, answer.announced.value_or(messageSize(answer.body)), chunked);
    append(bytes.head, Part::literal(headText(answer, faults, lines)));
    bytes.body = chunked ? chunkedBody(std::move(answer.body), faults) : std::move(answer.body);
    cut(bytes, faults);
    if (const auto percent = faults.number(Fault::Stall)) {
        Message rest = std::move(bytes.body);
        bytes.body =
            takeFront(rest, messageSize(rest) * static_cast<std::uint64_t>(*percent) / 100);
        bytes.held = std::move(rest);
    }
    return bytes;
}

} // namespace simulator
