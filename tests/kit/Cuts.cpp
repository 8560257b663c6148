#include "tests/kit/Cuts.h"

#include <algorithm>
#include <cstdio>

namespace support {

std::string allBytes(const std::vector<Piece>& pieces)
{
    std::string bytes;
    for (const Piece& piece : pieces) {
        bytes += piece.bytes;
    }
    return bytes;
}

std::string closedBehind(const std::vector<Piece>& pieces, const std::string& closedAtStart,
                         std::size_t count)
{
    std::string closed = closedAtStart;
    std::size_t begin = 0;
    for (const Piece& piece : pieces) {
        if (count <= begin) {
            break;
        }
        closed = piece.closed;
        begin += piece.bytes.size();
    }
    return closed;
}

std::vector<std::string> cut(const std::string& bytes, const std::vector<std::size_t>& positions)
{
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (const std::size_t end : positions) {
        pieces.push_back(bytes.substr(begin, end - begin));
        begin = end;
    }
    pieces.push_back(bytes.substr(begin));
    return pieces;
}

std::vector<std::string> singleBytes(const std::string& bytes)
{
    std::vector<std::string> pieces;
    for (const char byte : bytes) {
        pieces.emplace_back(1, byte);
    }
    return pieces;
}

QString outcomeAt(const QVector<Step>& steps, std::size_t position)
{
    QString outcome;
    for (const Step& step : steps) {
        outcome = position >= step.from ? step.outcome : outcome;
    }
    return outcome;
}

std::string printable(const std::string& bytes)
{
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '\r') {
            text += "\\r";
        } else if (byte == '\n') {
            text += "\\n";
        } else if (value < 0x20 || value > 0x7E) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", value);
            text += escape;
        } else {
            text += byte;
        }
    }
    return text;
}

std::string shortened(const std::string& bytes)
{
    const std::string text = printable(bytes);
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_not_of(text[at], at), text.size());
        const std::string run = text.substr(at, end - at);
        result +=
            run.size() < 100 ? run : "\\(" + std::to_string(run.size()) + " " + text[at] + ")";
        at = end;
    }
    return result;
}

std::string inQuotes(const std::string& bytes)
{
    return '"' + shortened(bytes) + '"';
}

} // namespace support
