// The commands of the camera's web server and the grammar of their answers. Each command is one
// GET; an argument is appended unchanged and never encoded. The format command's query does not
// start with an ampersand, while those of the list, details and delete commands do; each is sent
// exactly in this form.
#pragma once

#include <QString>

namespace card {

/// End of a value in an answer, as in key="value";
constexpr char valueEnd[] = "\";";

/// Answer: the number of files, after countStart.
constexpr char fileCountCommand[] = "http://192.168.1.120/cgi-bin/hi3510/getfilecount.cgi?";
constexpr char countStart[] = "=\"";

/// Argument: the count, as in the answer to the count command. Answer: entries, each with the name
/// after directoryTag and with entryEnd at its end, and then listEnd.
constexpr char fileListCommand[] =
    "http://192.168.1.120/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=";
constexpr char directoryTag[] = "ZEPNA/";
constexpr char entryEnd[] = ";";
constexpr char listEnd = '\r';

/// Argument: a file name. Answer, in any order: the creation time as YYYYMMDDhhmmss, the size in
/// bytes and the duration in seconds.
constexpr char fileInfoCommand[] =
    "http://192.168.1.120/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr char createStart[] = "create=\"";
constexpr char sizeStart[] = "size=\"";
constexpr char timeStart[] = "time=\"";

/// Argument: a file name. Any answer counts as success.
constexpr char deleteFileCommand[] =
    "http://192.168.1.120/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/";

/// Answer to this command and the next, on success: exactly successAnswer.
constexpr char formatCardCommand[] =
    "http://192.168.1.120/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1";
constexpr char deleteAllFilesCommand[] = "http://192.168.1.120/cgi-bin/hi3510/deleteallfiles.cgi?";
constexpr char successAnswer[] = "Success\r\n";

/// Returns a command with its argument appended.
QString withArgument(const QString& command, const QString& argument);

} // namespace card
