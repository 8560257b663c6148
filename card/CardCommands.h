// The commands of the camera's web server. Each is one GET; a command that names a file or a number
// has it joined on as it stands, since the camera decodes nothing.
#pragma once

#include <QString>

namespace card {

/// Answer: the number of files between =" and ";
QString fileCountCommand();
/// Takes the count text. Answer: entries that each end in a semicolon, then a carriage return.
QString fileListCommand();
/// Takes a file name. Answer: create, size and time, each as key="value";
QString fileInfoCommand();
/// Takes a file name. The answer's text says nothing.
QString deleteFileCommand();
/// Answer: exactly successAnswer.
QString deleteAllFilesCommand();
/// Answer: exactly successAnswer.
QString formatCardCommand();

constexpr char successAnswer[] = "Success\r\n";

/// A command with its argument joined on.
QString withArgument(const QString& command, const QString& argument);

} // namespace card
