#include "simulator/Content.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>

namespace simulator {

std::uint64_t mixed(std::uint64_t value)
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

namespace {

std::size_t available(std::uint64_t offset, std::uint64_t size, std::size_t count)
{
    return offset >= size ? 0
                          : static_cast<std::size_t>(std::min<std::uint64_t>(size - offset, count));
}

} // namespace

FileContent::FileContent(std::shared_ptr<const FileDescriptor> folder, std::string name)
    : m_folder(std::move(folder)), m_name(std::move(name))
{
}

std::size_t FileContent::read(std::uint64_t offset, char* buffer, std::size_t count) const
{
    const FileDescriptor file(
        ::openat(m_folder->get(), m_name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    std::size_t done = 0;
    while (file.valid() && done < count) {
        const ssize_t got =
            ::pread(file.get(), buffer + done, count - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

NoiseContent::NoiseContent(std::string head, std::uint64_t size, std::uint64_t seed)
    : m_head(std::move(head)), m_size(size), m_seed(mixed(seed))
{
}

std::size_t NoiseContent::read(std::uint64_t offset, char* buffer, std::size_t count) const
{
    const std::size_t wanted = available(offset, m_size, count);
    std::uint64_t block = offset / 8;
    std::uint64_t bits = mixed(m_seed + block);
    for (std::size_t i = 0; i < wanted; ++i) {
        const std::uint64_t position = offset + i;
        if (position / 8 != block) {
            block = position / 8;
            bits = mixed(m_seed + block);
        }
        buffer[i] = position < m_head.size()
                        ? m_head[static_cast<std::size_t>(position)]
                        : static_cast<char>((bits >> (position % 8 * 8)) & 0xFFU);
    }
    return wanted;
}

JoinedContent::JoinedContent(std::shared_ptr<const Content> first, std::uint64_t size,
                             std::shared_ptr<const Content> second)
    : m_first(std::move(first)), m_size(size), m_second(std::move(second))
{
}

std::size_t JoinedContent::read(std::uint64_t offset, char* buffer, std::size_t count) const
{
    const std::size_t wanted = available(offset, m_size, count);
    const std::size_t done = wanted > 0 ? m_first->read(offset, buffer, wanted) : 0;
    if (done < wanted || done == count) {
        return done;
    }
    return done + m_second->read(offset + done - m_size, buffer + done, count - done);
}

RepeatedContent::RepeatedContent(std::string text, std::uint64_t size)
    : m_text(std::move(text)), m_size(size)
{
}

std::size_t RepeatedContent::read(std::uint64_t offset, char* buffer, std::size_t count) const
{
    const std::size_t wanted = available(offset, m_size, count);
    for (std::size_t i = 0; i < wanted; ++i) {
        buffer[i] = m_text[static_cast<std::size_t>((offset + i) % m_text.size())];
    }
    return wanted;
}

} // namespace simulator
