// A recording's details: an answer in; date, size and duration texts out.
#pragma once

#include <cstdint>

#include <QString>

namespace card {

/// The details as the table shows them.
struct FileInfoText
{
    QString date;
    QString size;
    QString duration;
};

/// Returns the details that an answer to the file information command states.
///
/// The date is the creation time as "2020-01-31  12:45:02": what a shorter text lacks is left out
/// between the separators, what a longer one has more is dropped. The size is in whole megabytes
/// from 1,048,576 bytes on, in whole kilobytes below, rounded down: less than one kilobyte is the
/// bare unit, and less than minus one is shown as received. The duration is the text as received
/// with an "s".
///
/// All three are read into one scratch text, so that a missing field reads the one before it: a
/// missing size the creation time, a missing duration the digits of the size.
FileInfoText readFileInfo(const char* answer);

/// A recording's exact size.
struct ExactSize
{
    enum class Reading {
        Known,
        Missing,    ///< The answer has no size.
        NotANumber, ///< The size is not written in decimal digits alone.
        OutOfRange, ///< The size is negative or does not fit into 63 bits.
    };

    Reading reading = Reading::Missing;
    std::int64_t bytes = 0; ///< 0 unless known.
};

/// Returns the size that an answer to the file information command states, in bytes.
ExactSize exactSize(const char* answer);

} // namespace card
