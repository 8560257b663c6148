// The bytes of the recordings.
#pragma once

#include "simulator/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace simulator {

/// Returns a 64-bit hash of a value.
std::uint64_t mixed(std::uint64_t value);

/// The bytes of one recording, read at any offset.
class Content
{
public:
    virtual ~Content() = default;
    /// Reads up to count bytes from offset on and returns how many were read. Fewer means that the
    /// recording ends there or cannot be read.
    virtual std::size_t read(std::uint64_t offset, char* buffer, std::size_t count) const = 0;
};

/// A file in the folder given by --card; opened read-only, and only while it is being read.
class FileContent : public Content
{
public:
    /// folder: a descriptor of the folder, shared by all its files.
    FileContent(std::shared_ptr<const FileDescriptor> folder, std::string name);
    std::size_t read(std::uint64_t offset, char* buffer, std::size_t count) const override;

private:
    std::shared_ptr<const FileDescriptor> m_folder;
    std::string m_name;
};

/// The bytes of a given head, then pseudo-random bytes that depend only on the seed and the offset.
class NoiseContent : public Content
{
public:
    NoiseContent(std::string head, std::uint64_t size, std::uint64_t seed);
    std::size_t read(std::uint64_t offset, char* buffer, std::size_t count) const override;

private:
    std::string m_head;
    std::uint64_t m_size;
    std::uint64_t m_seed;
};

/// The first `size` bytes of one content, then another one.
class JoinedContent : public Content
{
public:
    JoinedContent(std::shared_ptr<const Content> first, std::uint64_t size,
                  std::shared_ptr<const Content> second);
    std::size_t read(std::uint64_t offset, char* buffer, std::size_t count) const override;

private:
    std::shared_ptr<const Content> m_first;
    std::uint64_t m_size;
    std::shared_ptr<const Content> m_second;
};

/// One text repeated up to the size.
class RepeatedContent : public Content
{
public:
    RepeatedContent(std::string text, std::uint64_t size);
    std::size_t read(std::uint64_t offset, char* buffer, std::size_t count) const override;

private:
    std::string m_text;
    std::uint64_t m_size;
};

} // namespace simulator
