// Compares texts with recordings.
//
// A recording in tests/data was reviewed when it was made. After a change that is meant to change
// it, set BELUN_RECORD=1 in the environment to record it again instead of comparing. The test then
// fails, because it has compared nothing. Recording is refused if CI is set.
#pragma once

#include <QString>

/// Returns an error text if recording is requested while CI is set, otherwise an empty text.
QString whyNotToRecord();

/// Compares the text with the recording of that name ("wire/healthy.txt"), or records it. Returns
/// an empty text if they are equal. Otherwise returns a message: the first differing line and where
/// the complete text was saved, next to the test program; or that the text was recorded.
QString differenceToRecorded(const QString& name, const QString& text);

/// Returns the path of a recording.
QString recordedPath(const QString& name);
