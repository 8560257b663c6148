// The log of connections, bytes, requests and control lines.
#pragma once

#include "simulator/FileDescriptor.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace simulator {

/// A journal line under construction: a JSON object with its fields in the order they are added.
class JournalLine
{
public:
    /// Starts the line with "time" (UTC, microseconds), "device", "connection" unless it is 0, and
    /// "event".
    JournalLine(std::string_view device, int connection, std::string_view event);
    /// Adds a text. Bytes of 0x80 and above become the code point of the same number, so that no
    /// byte is lost and the line is ASCII.
    JournalLine& text(std::string_view name, std::string_view value);
    JournalLine& number(std::string_view name, std::uint64_t value);
    /// Adds the field "bytes" in hexadecimal.
    JournalLine& bytes(std::string_view value);
    /// Returns the finished line without its line ending.
    std::string finished() const { return m_text + "}"; }

private:
    std::string m_text;
};

/// The file given by --journal. Every line is written immediately. Without an open file, lines are
/// ignored.
class Journal
{
public:
    /// Creates the file; an existing one is overwritten. Returns an error text, empty on success.
    /// full: write all bytes, including those of recordings.
    std::string open(const std::string& path, bool full);
    bool isFull() const { return m_full; }
    /// Appends a line. The first write error, such as a full disk, is reported on standard error.
    void write(const JournalLine& line);

private:
    FileDescriptor m_file;
    bool m_full = false;
    bool m_failed = false;
};

} // namespace simulator
