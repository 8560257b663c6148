// Read-only access to the folder for recordings on this computer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace verify {

/// A file opened for reading, which the destructor closes.
class LocalFile
{
public:
    enum class State {
        Open,
        Missing,
        Link, ///< a symbolic link, which is not followed
        Folder,
        NoFile,   ///< a pipe, socket or device
        NotThere, ///< missing, because no file can have this name
        Failed,   ///< see error()
    };

    LocalFile() = default;
    /// Opens a file of any kind, without blocking, in the folder with this descriptor.
    LocalFile(int folder, const std::string& name);
    ~LocalFile();
    LocalFile(LocalFile&& other) noexcept;
    LocalFile& operator=(LocalFile&&) = delete;
    LocalFile(const LocalFile&) = delete;
    LocalFile& operator=(const LocalFile&) = delete;

    State state() const { return m_state; }
    int error() const { return m_error; } ///< errno of the failed call, else 0
    std::uint64_t size() const { return m_size; }

    /// Makes read() read from the disk and not from the page cache, as far as the system allows it:
    /// only reading from the disk finds errors on it, and the files of a whole card would displace
    /// everything else from the cache.
    void readFromDisk();

    /// Reads up to `count` bytes and returns their number, which is smaller than `count` only at
    /// the end of the file or after an error, which error() then returns.
    std::size_t read(char* buffer, std::size_t count);

    /// Returns whether size and modification time are still the same as when the file was opened.
    bool isUnchanged() const;

private:
    int m_descriptor = -1;
    State m_state = State::Missing;
    int m_error = 0;
    std::uint64_t m_size = 0;
    std::timespec m_changed{};
    bool m_fromDisk = false;
    std::uint64_t m_position = 0;
    std::uint64_t m_dropped = 0; // bytes from the start already dropped from the cache
};

class LocalFolder
{
public:
    /// A missing folder counts as an empty one.
    explicit LocalFolder(std::string path);
    ~LocalFolder();
    LocalFolder(const LocalFolder&) = delete;
    LocalFolder& operator=(const LocalFolder&) = delete;

    const std::string& path() const { return m_path; }
    /// Returns the errno of the call that failed to read the folder; 0 if the folder was read or
    /// does not exist.
    int error() const { return m_error; }

    LocalFile open(const std::string& name) const;

    /// Returns the sorted names of the regular files, without hidden ones. After a failure, see
    /// error().
    std::vector<std::string> names();

    /// Returns how many bytes this user can still write in the folder or, if it does not exist, in
    /// its parent folder; nothing if that is unknown.
    std::optional<std::uint64_t> freeBytes() const;

private:
    const std::string m_path;
    int m_descriptor = -1;
    int m_error = 0;
};

} // namespace verify
