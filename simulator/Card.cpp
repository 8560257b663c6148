#include "simulator/Card.h"

#include "simulator/Mp4Duration.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace simulator {

namespace {

constexpr std::uint64_t nominalBytesPerSecond = 1'000'000;
constexpr std::uint64_t uniformSize = 4'000;

std::string creationText(std::time_t time)
{
    std::tm parts{};
    ::localtime_r(&time, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &parts);
    return text;
}

std::uint64_t nominalDuration(std::uint64_t size)
{
    return (size + nominalBytesPerSecond - 1) / nominalBytesPerSecond;
}

} // namespace

void Card::add(Recording recording)
{
    recording.ordinal = m_recordings.empty() ? 0 : m_recordings.back().ordinal + 1;
    m_recordings.push_back(std::move(recording));
}

void Card::remove(std::size_t index)
{
    m_recordings.erase(m_recordings.begin() + static_cast<std::ptrdiff_t>(index));
}

void Card::grow(std::size_t index, std::uint64_t bytes)
{
    Recording& recording = m_recordings[index];
    recording.content = std::make_shared<JoinedContent>(
        recording.content, recording.size, std::make_shared<NoiseContent>("", bytes, index));
    recording.size += bytes;
}

std::string readFolderCard(const std::string& path, Card& card)
{
    const auto folder = std::make_shared<const FileDescriptor>(
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto closeFolder = [](DIR* open) { ::closedir(open); };
    const std::unique_ptr<DIR, decltype(closeFolder)> listing(::opendir(path.c_str()), closeFolder);
    if (!folder->valid() || !listing) {
        return path + ": " + std::strerror(errno);
    }
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(listing.get())) {
        if (entry->d_name[0] != '.') {
            names.emplace_back(entry->d_name);
        }
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        struct stat status
        {
        };
        if (::fstatat(folder->get(), name.c_str(), &status, 0) != 0 || !S_ISREG(status.st_mode)) {
            continue;
        }
        Recording recording;
        recording.name = name;
        recording.size = static_cast<std::uint64_t>(status.st_size);
        recording.created = creationText(status.st_mtime);
        recording.content = std::make_shared<FileContent>(folder, name);
        recording.duration = mp4Duration(*recording.content, recording.size)
                                 .value_or(nominalDuration(recording.size));
        card.add(std::move(recording));
    }
    return {};
}

Card uniformCard(std::size_t count, std::uint64_t seed)
{
    Card card;
    for (std::size_t i = 1; i <= count; ++i) {
        char name[40];
        std::snprintf(name, sizeof name, "REC%05zu.MP4", i);
        Recording recording;
        recording.name = name;
        recording.size = uniformSize;
        recording.created = "20200131124502";
        recording.duration = 4;
        recording.content = std::make_shared<NoiseContent>(mp4Head(4), uniformSize, seed + i);
        card.add(std::move(recording));
    }
    return card;
}

} // namespace simulator
