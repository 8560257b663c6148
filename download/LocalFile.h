// The local file of a recording: its folder, its name, opening it.
#pragma once

#include "posix/StoppableCalls.h"

#include <QByteArray>
#include <QString>

namespace download {

/// Returns the folder for recordings, with a trailing slash, in the user's desktop folder. The path
/// is in Latin-1. If the desktop folder exists only under its name in the file system's encoding,
/// the path is in that encoding, so that no download is lost.
QByteArray recordingsFolder(const QString& desktop);

/// Creates the folder unless it exists; one level only. A failure becomes visible when a file is
/// opened.
void makeFolder(const QByteArray& folder);

/// Returns whether a name from the camera names a file in the folder itself: not empty, not "." or
/// "..", and without a slash or a zero byte.
bool isBareFileName(const QByteArray& name);

/// Opens a file in the folder for writing without truncating an existing one. Returns its
/// descriptor, owned by the caller, or -1 if the name is not bare, if it belongs to something other
/// than a regular file (including a link), or if it cannot be opened. Waits while another program
/// holds a lease on the file, until `call` is stopped.
int openLocalFile(sys::StoppableCalls::Call& call, const QByteArray& folder,
                  const QByteArray& name);

} // namespace download
