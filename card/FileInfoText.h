// Reads a recording's details from an answer: as texts for the table, and as an exact size.
#pragma once

#include <cstdint>

#include <QString>

namespace card {

/// The details as shown in the table.
struct FileInfoText
{
    QString date;
    QString size;
    QString duration;
};

/// Returns the details stated by an answer to the file information command.
///
/// The date is the creation time as "2020-01-31  12:45:02": the digits missing from a shorter text
/// are left out between the separators, and the excess ones of a longer text are dropped. The size
/// is in whole megabytes from 1,048,576 bytes on and in whole kilobytes below, rounded towards
/// zero. From -1,023 to 1,023 bytes only the unit is shown; a size of -1,024 bytes or less is shown
/// as received, followed by "KB". The duration is the text as received, followed by "s".
///
/// All three fields are copied into one buffer, so instead of a missing size or duration the
/// previous contents of the buffer are used: the creation time is read as the size, and the number
/// in the size text is shown as the duration.
FileInfoText readFileInfo(const char* answer);

/// A recording's exact size.
struct ExactSize
{
    enum class Reading {
        Known,
        Missing,    ///< The answer has no size.
        NotANumber, ///< The size is empty or has a character that is not a digit, such as a sign.
        OutOfRange, ///< The size does not fit into 63 bits.
    };

    Reading reading = Reading::Missing;
    std::int64_t bytes = 0; ///< 0 unless known.
};

/// Returns the size in bytes stated by an answer to the file information command.
ExactSize exactSize(const char* answer);

} // namespace card
