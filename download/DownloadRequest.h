// What is asked of the camera, and where its answer goes.
#pragma once

#include <QByteArray>
#include <QString>

namespace download {

/// The camera's address and the port of its web server.
constexpr char cameraHost[] = "192.168.1.120";
constexpr unsigned short cameraPort = 80;

/// The request for an absolute URL. The camera's server takes the header lines in this form,
/// without a space behind their colons.
QByteArray requestText(const QByteArray& url, const char* host);

/// The folder for recordings, with a slash at its end, in the user's desktop folder. The path is
/// Latin-1; only a desktop folder that does not exist under that name but does under the file
/// system's own encoding is named in the latter, so that no download is lost.
QByteArray recordingsFolder(const QString& desktop);

/// Whether a name from the camera names a file in the folder itself: not empty, not "." or "..",
/// and without a slash or a zero byte.
bool isBareFileName(const QByteArray& name);

} // namespace download
