#include "simulator/SampleCard.h"

#include "simulator/Mp4Duration.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace simulator {

namespace {

struct SampleRow
{
    const char* name;
    std::uint64_t size;
    const char* created;
    std::uint32_t duration;
};

/// Recordings that test limits: sizes at the rounding steps of the size display and around the
/// buffer sizes of one receive and one file read, and the longest name. Some are larger.
constexpr SampleRow boundaryRows[] = {
    {"REC_20200131_124502_0001.MP4", 1'572'864, "20200131124502", 37},
    {"REC_20200131_124611_0002.MP4", 500, "20200131124611", 1},
    {"REC_20200131_130000_0003.MP4", 2'047, "20200131130000", 2},
    {"REC_20200229_235959_0004.MP4", 5'000, "20200229235959", 3},
    {"REC_20200301_000000_0005.MP4", 1'048'575, "20200301000000", 25},
    {"REC_20200301_061530_0006.MP4", 1'048'576, "20200301061530", 26},
    {"REC_20200614_171203_0007.MP4", 10'241, "20200614171203", 4},
    {"REC_20201224_180000_0008.MP4", 20'971'520, "20201224180000", 168},
    {"REC_20201231_235958_0009.MP4", 67'108'864, "20201231235958", 540},
    {"REC_20210101_000003_0010.MP4", 3'276'800, "20210101000003", 27},
    {"REC_20210101_000045_00011.MP4", 4'096, "20210101000045", 5}, // 29 characters, the limit
};

/// Recordings whose sizes match their durations at about 2 Mbit/s, as video with 720 lines has.
constexpr SampleRow diveRows[] = {
    {"DIVE_0001.MP4", 10'395'648, "20240614091205", 41},
    {"DIVE_0002.MP4", 47'185'920, "20240614092347", 187},
    {"DIVE_0003.MP4", 61'308'928, "20240614094110", 241},
    {"DIVE_0004.MP4", 4'505'600, "20240614113902", 18},
    {"DIVE_0005.MP4", 23'871'488, "20240614140233", 94},
    {"DIVE_0006.MP4", 54'263'808, "20240615083528", 214},
    {"DIVE_0007.MP4", 28'409'856, "20240615085416", 112},
    {"DIVE_0008.MP4", 15'532'032, "20240615101951", 61},
    {"DIVE_0009.MP4", 7'389'184, "20240615154740", 29},
};

Card cardOf(const SampleRow* first, const SampleRow* last, std::uint64_t seed)
{
    Card card;
    for (const SampleRow* row = first; row != last; ++row) {
        Recording recording;
        recording.name = row->name;
        recording.size = row->size;
        recording.created = row->created;
        recording.duration = row->duration;
        recording.content = std::make_shared<NoiseContent>(mp4Head(row->duration), row->size,
                                                           seed * 1'000 + card.recordings().size());
        card.add(std::move(recording));
    }
    return card;
}

std::timespec fileTime(const std::string& created)
{
    std::tm parts{};
    parts.tm_isdst = -1;
    std::sscanf(created.c_str(), "%4d%2d%2d%2d%2d%2d", &parts.tm_year, &parts.tm_mon,
                &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &parts.tm_sec);
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    return {std::mktime(&parts), 0};
}

/// Returns whether the file contains exactly the recording's bytes.
bool sameContent(const FileDescriptor& file, const Recording& recording)
{
    struct stat status
    {
    };
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        static_cast<std::uint64_t>(status.st_size) != recording.size) {
        return false;
    }
    std::vector<char> expected(65'536);
    std::vector<char> found(expected.size());
    for (std::uint64_t offset = 0; offset < recording.size;) {
        const std::size_t count = recording.content->read(offset, expected.data(), expected.size());
        const ssize_t got = ::pread(file.get(), found.data(), count, static_cast<off_t>(offset));
        if (got <= 0 || static_cast<std::size_t>(got) != count ||
            std::memcmp(expected.data(), found.data(), count) != 0) {
            return false;
        }
        offset += count;
    }
    return true;
}

bool writeContent(const FileDescriptor& file, const Recording& recording)
{
    std::vector<char> buffer(65'536);
    for (std::uint64_t offset = 0; offset < recording.size;) {
        const std::size_t count = recording.content->read(offset, buffer.data(), buffer.size());
        const ssize_t written = ::write(file.get(), buffer.data(), count);
        if (written <= 0) {
            return false;
        }
        offset += static_cast<std::uint64_t>(written);
    }
    const std::timespec time = fileTime(recording.created);
    const std::timespec times[2] = {time, time};
    return ::futimens(file.get(), times) == 0;
}

} // namespace

Card sampleCard(Sample sample, std::uint64_t seed)
{
    return sample == Sample::Dive ? cardOf(std::begin(diveRows), std::end(diveRows), seed)
                                  : cardOf(std::begin(boundaryRows), std::end(boundaryRows), seed);
}

std::string writeCard(const Card& card, const std::string& path)
{
    if (::mkdir(path.c_str(), 0777) != 0 && errno != EEXIST) {
        return path + ": " + std::strerror(errno);
    }
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.valid()) {
        return path + ": " + std::strerror(errno);
    }
    for (const Recording& recording : card.recordings()) {
        const std::string place = path + "/" + recording.name + ": ";
        const FileDescriptor file(::openat(folder.get(), recording.name.c_str(),
                                           O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (file.valid()) {
            if (!writeContent(file, recording)) {
                return place + std::strerror(errno);
            }
            continue;
        }
        const int error = errno;
        const FileDescriptor old(
            ::openat(folder.get(), recording.name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        if (error != EEXIST || !old.valid()) {
            return place + std::strerror(error);
        }
        if (!sameContent(old, recording)) {
            return place + "exists and is another file; nothing is overwritten";
        }
    }
    return {};
}

} // namespace simulator
