// What is asked of the camera.
#pragma once

#include <QByteArray>

namespace download {

/// The camera's address and the port of its web server.
constexpr char cameraHost[] = "192.168.1.120";
constexpr unsigned short cameraPort = 80;

/// Comes before a recording's name in its URL.
constexpr char recordingUrlPrefix[] = "http://192.168.1.120/sd/DCIM/100ZEPNA/";

/// The request for an absolute URL. The camera's server takes the header lines in this form,
/// without a space behind their colons.
QByteArray requestText(const QByteArray& url, const char* host);

} // namespace download
