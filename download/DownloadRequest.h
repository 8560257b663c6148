// The request for a recording.
#pragma once

#include <QByteArray>

namespace download {

/// The camera's address and the port of its web server.
constexpr char cameraHost[] = "192.168.1.120";
constexpr unsigned short cameraPort = 80;

/// The URL of a recording up to its name.
constexpr char recordingUrlPrefix[] = "http://192.168.1.120/sd/DCIM/100ZEPNA/";

/// Returns the request for an absolute URL. Its header lines have no space after the colon.
QByteArray requestText(const QByteArray& url, const char* host);

} // namespace download
