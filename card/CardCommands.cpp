#include "card/CardCommands.h"

namespace card {

namespace {

/// The format command's query does not begin with an ampersand while those of the list, details and
/// delete commands do: the camera takes each command in its own form only.
QString command(const char* pathAndQuery)
{
    return QStringLiteral("http://192.168.1.120/cgi-bin/hi3510/") + QLatin1String(pathAndQuery);
}

} // namespace

QString fileCountCommand()
{
    return command("getfilecount.cgi?");
}

QString fileListCommand()
{
    return command("getfilelist.cgi?&-start=1&-end=");
}

QString fileInfoCommand()
{
    return command("getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/");
}

QString deleteFileCommand()
{
    return command("deletefile.cgi?&-name=sd/DCIM/100ZEPNA/");
}

QString deleteAllFilesCommand()
{
    return command("deleteallfiles.cgi?");
}

QString formatCardCommand()
{
    return command("sdcommand.cgi?-format&-partition=1");
}

QString withArgument(const QString& command, const QString& argument)
{
    return command + argument;
}

} // namespace card
