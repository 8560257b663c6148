// The log of everything on the wire.
#pragma once

#include "simulator/FileDescriptor.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace simulator {

/// One line of the journal in the making: a JSON object, fields in the order they are added.
class JournalLine
{
public:
    /// Begins with "time" (UTC, microseconds), "device" and, unless 0, "connection", then "event".
    JournalLine(std::string_view device, int connection, std::string_view event);
    /// Adds a text. Bytes from 80 on become the code point of the same number, so that no byte is
    /// lost and the line is ASCII.
    JournalLine& text(std::string_view name, std::string_view value);
    JournalLine& number(std::string_view name, std::uint64_t value);
    /// Adds the field "bytes" in hexadecimal.
    JournalLine& bytes(std::string_view value);
    /// The finished line without its line end.
    std::string finished() const { return m_text + "}"; }

private:
    std::string m_text;
};

/// The file that --journal names. Every line is written out at once. Without a file nothing
/// happens.
class Journal
{
public:
    /// Creates or empties the file. Returns an error text, empty on success.
    /// full: all bytes are kept, of recordings, too.
    std::string open(const std::string& path, bool full);
    bool isFull() const { return m_full; }
    /// Appends a line. A file that takes no more (disk full) is reported once on standard error.
    void write(const JournalLine& line);

private:
    FileDescriptor m_file;
    bool m_full = false;
    bool m_failed = false;
};

} // namespace simulator
