// Comparing the bytes of a recording, as they arrive, with those of a file.
#pragma once

#include "verify/LocalFolder.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace verify {

/// Holds no more of the file than of the recording at once.
class ByteComparison
{
public:
    /// The file is read from where it is.
    explicit ByteComparison(LocalFile& file) : m_file(file) {}

    /// Compares the next bytes. Returns false from the first one on that differs or that the file
    /// does not have.
    bool take(std::string_view bytes);

    bool isSame() const { return m_same; }
    /// Bytes that are the same, from the start.
    std::uint64_t compared() const { return m_compared; }

private:
    LocalFile& m_file;
    std::vector<char> m_buffer;
    std::uint64_t m_compared = 0;
    bool m_same = true;
};

} // namespace verify
