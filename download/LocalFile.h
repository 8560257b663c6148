// The local file of a recording: its folder, its name, opening it.
#pragma once

#include "posix/StoppableCalls.h"

#include <QByteArray>
#include <QString>

namespace download {

/// Returns the folder for recordings in the user's desktop folder, with a trailing slash. The path
/// is in Latin-1 unless the desktop folder exists only under its name in the file system's
/// encoding: then the path is in that encoding, so that no download is lost.
QByteArray recordingsFolder(const QString& desktop);

/// Creates the folder, but not its parent, unless it exists. Reports no failure: opening a file in
/// the folder then fails.
void makeFolder(const QByteArray& folder);

/// Returns whether a name from the camera names a file in the folder itself: not empty, not "." or
/// "..", and without a slash or a zero byte.
bool isBareFileName(const QByteArray& name);

/// Opens a file in the folder for writing: creates a missing one, and does not truncate an existing
/// one. Returns the descriptor, owned by the caller, or -1 if the name is not bare, if something
/// other than a regular file has this name (a link, for example), or if the file cannot be opened.
/// Waits while another process holds a lease on the file, unless a stop interrupts `call`.
int openLocalFile(sys::StoppableCalls::Call& call, const QByteArray& folder,
                  const QByteArray& name);

} // namespace download
