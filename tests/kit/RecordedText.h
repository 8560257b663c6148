// Compares texts with files in tests/data: written by hand, or recorded.
//
// A recording in tests/data was reviewed when it was made. After a change that is meant to change a
// recording, set BELUN_RECORD=1 in the environment to record it again instead of comparing. The
// test then fails, because it has compared nothing. Recording is refused if CI is set.
#pragma once

#include <QString>

namespace support {

/// Returns the path of a file in tests/data, such as "form.txt".
QString dataPath(const QString& name);

/// Compares the text with a file that is written by hand. Returns an empty text if they are equal,
/// otherwise a message: the first differing line and where the complete text was saved, next to the
/// test program.
QString differenceToData(const QString& name, const QString& text);

/// Compares the text with the recording of that name ("wire/healthy.txt"), like differenceToData().
/// With BELUN_RECORD=1, records the text instead and returns a message that says so.
QString differenceToRecorded(const QString& name, const QString& text);

/// Returns an error text if recording is requested while CI is set, otherwise an empty text.
QString whyNotToRecord();

} // namespace support
