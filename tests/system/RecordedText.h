// Texts that a test compares with recorded ones.
//
// A text recorded under tests/data is what a run looked like when someone had read it and found it
// right. After a change that is meant to change it, BELUN_RECORD=1 in the environment of the test
// writes it anew instead of comparing; the test fails then all the same, so that no run passes that
// has compared nothing. Where CI is set nothing is ever recorded.
#pragma once

#include <QString>

/// Why the test must not run as it was asked to, empty when it may.
QString whyNotToRecord();

/// Compares the text with the recorded one of that name ("wire/healthy.txt"), or records it. What
/// it returns is empty when they are equal, else tells the first line that differs and where the
/// whole text was kept: beside the test program.
QString differenceToRecorded(const QString& name, const QString& text);

/// Path of a recorded text.
QString recordedPath(const QString& name);
