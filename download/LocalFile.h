// The local file of a recording: its folder, its name, opening it.
#pragma once

#include "posix/StoppableCalls.h"

#include <QByteArray>
#include <QString>

namespace download {

/// Returns the folder for recordings, with a slash at its end, in the user's desktop folder. The
/// path is Latin-1; only a desktop folder that does not exist under that name but does under the
/// file system's own encoding is named in the latter, so that no download is lost.
QByteArray recordingsFolder(const QString& desktop);

/// Creates the folder unless it exists; one level only. A failure shows when a file is opened.
void makeFolder(const QByteArray& folder);

/// Returns whether a name from the camera names a file in the folder itself: not empty, not "." or
/// "..", and without a slash or a zero byte.
bool isBareFileName(const QByteArray& name);

/// Opens a file in the folder for writing and keeps what an existing one holds. Returns its
/// descriptor, which is the caller's, or -1 if the name is not bare, if something other than a
/// regular file has it (a link is none), or if it cannot be opened. Waits while another program
/// holds a lease on the file, until `call` is stopped.
int openLocalFile(sys::StoppableCalls::Call& call, const QByteArray& folder,
                  const QByteArray& name);

} // namespace download
