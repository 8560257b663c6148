#include "verify/LocalFolder.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace verify {

namespace {

constexpr std::uint64_t dropSize = 8'388'608;

LocalFile::State stateOf(int error)
{
    switch (error) {
    case ENOENT:
        return LocalFile::State::Missing;
    case ELOOP:
        return LocalFile::State::Link;
    case ENXIO:
    case ENODEV:
        return LocalFile::State::NoFile;
    case ENAMETOOLONG:
    case EILSEQ:
        return LocalFile::State::NotThere;
    default:
        return LocalFile::State::Failed;
    }
}

/// Returns the parent folder of a path. Ignores trailing slashes.
std::string parentOf(std::string path)
{
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return path.substr(0, std::max<std::size_t>(slash, 1));
}

} // namespace

// A link could lead out of the folder, so it is not followed. Opening a pipe could block, hence
// O_NONBLOCK.
LocalFile::LocalFile(int folder, const std::string& name)
    : m_descriptor(
          ::openat(folder, name.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY))
{
    if (m_descriptor < 0) {
        m_error = errno;
        m_state = stateOf(m_error);
        return;
    }
    struct stat properties
    {
    };
    if (::fstat(m_descriptor, &properties) != 0) {
        m_error = errno;
        m_state = State::Failed;
    } else if (!S_ISREG(properties.st_mode)) {
        m_state = S_ISDIR(properties.st_mode) ? State::Folder : State::NoFile;
    } else {
        m_state = State::Open;
        m_size = static_cast<std::uint64_t>(properties.st_size);
        m_changed = properties.st_mtim;
    }
}

LocalFile::~LocalFile()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

LocalFile::LocalFile(LocalFile&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)), m_state(other.m_state),
      m_error(other.m_error), m_size(other.m_size), m_changed(other.m_changed),
      m_fromDisk(other.m_fromDisk), m_position(other.m_position), m_dropped(other.m_dropped)
{
}

void LocalFile::readFromDisk()
{
    m_fromDisk = true;
    ::posix_fadvise(m_descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    ::posix_fadvise(m_descriptor, 0, 0, POSIX_FADV_DONTNEED);
}

std::size_t LocalFile::read(char* buffer, std::size_t count)
{
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = ::read(m_descriptor, buffer + done, count - done);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            m_error = errno;
        }
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    m_position += done;
    if (m_fromDisk && m_position - m_dropped >= dropSize) {
        ::posix_fadvise(m_descriptor, static_cast<off_t>(m_dropped),
                        static_cast<off_t>(m_position - m_dropped), POSIX_FADV_DONTNEED);
        m_dropped = m_position;
    }
    return done;
}

bool LocalFile::isUnchanged() const
{
    struct stat properties
    {
    };
    return ::fstat(m_descriptor, &properties) == 0 &&
           static_cast<std::uint64_t>(properties.st_size) == m_size &&
           properties.st_mtim.tv_sec == m_changed.tv_sec &&
           properties.st_mtim.tv_nsec == m_changed.tv_nsec;
}

LocalFolder::LocalFolder(std::string path)
    : m_path(std::move(path)),
      m_descriptor(::open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (m_descriptor < 0 && errno != ENOENT) {
        m_error = errno;
    }
}

LocalFolder::~LocalFolder()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

LocalFile LocalFolder::open(const std::string& name) const
{
    return m_descriptor < 0 ? LocalFile() : LocalFile(m_descriptor, name);
}

std::vector<std::string> LocalFolder::names()
{
    std::vector<std::string> found;
    // A separate descriptor, because the stream closes it.
    const int copy = m_descriptor < 0 ? -1 : ::openat(m_descriptor, ".", O_RDONLY | O_CLOEXEC);
    DIR* const stream = copy < 0 ? nullptr : ::fdopendir(copy);
    if (stream == nullptr) {
        if (m_descriptor >= 0) {
            m_error = errno;
        }
        if (copy >= 0) {
            ::close(copy);
        }
        return found;
    }
    errno = 0;
    while (const dirent* entry = ::readdir(stream)) {
        struct stat properties
        {
        };
        if (entry->d_name[0] != '.' &&
            ::fstatat(m_descriptor, entry->d_name, &properties, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(properties.st_mode)) {
            found.emplace_back(entry->d_name);
        }
        errno = 0;
    }
    m_error = errno;
    ::closedir(stream);
    std::sort(found.begin(), found.end());
    return found;
}

std::optional<std::uint64_t> LocalFolder::freeBytes() const
{
    struct statvfs disk
    {
    };
    for (const std::string& path : {m_path, parentOf(m_path)}) {
        if (::statvfs(path.c_str(), &disk) == 0) {
            return static_cast<std::uint64_t>(disk.f_bavail) * disk.f_frsize;
        }
    }
    return std::nullopt;
}

} // namespace verify
