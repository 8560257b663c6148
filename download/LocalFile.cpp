#include "download/LocalFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

namespace download {

namespace {

bool exists(const QByteArray& path)
{
    return ::access(path.constData(), F_OK) == 0;
}

} // namespace

QByteArray recordingsFolder(const QString& desktop)
{
    const QByteArray latin1 = desktop.toLatin1();
    const QByteArray native = QFile::encodeName(desktop);
    return (!exists(latin1) && exists(native) ? native : latin1) + "/DCIM/";
}

void makeFolder(const QByteArray& folder)
{
    if (!exists(folder)) {
        ::mkdir(folder.constData(), 0777);
    }
}

bool isBareFileName(const QByteArray& name)
{
    return !name.isEmpty() && name != "." && name != ".." && !name.contains('/') &&
           !name.contains('\0');
}

// A link could lead out of the folder, and opening a pipe or device could block, so none of them is
// opened. The opened file is checked again, because another program may have replaced the file
// after the first check. Its inode number is not compared: another regular file is acceptable, and
// an overlay file system changes the number when a file is written.
int openLocalFile(sys::StoppableCalls::Call& call, const QByteArray& folder, const QByteArray& name)
{
    if (!isBareFileName(name)) {
        return -1;
    }
    const QByteArray path = folder + name;
    struct stat found = {};
    if (::lstat(path.constData(), &found) == 0 && !S_ISREG(found.st_mode)) {
        return -1;
    }
    const int descriptor =
        call.open(path.constData(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0777);
    if (descriptor < 0) {
        return -1;
    }
    struct stat opened = {};
    if (::fstat(descriptor, &opened) != 0 || !S_ISREG(opened.st_mode)) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

} // namespace download
