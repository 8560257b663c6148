// Compares the bytes of a recording, as they arrive, with those of a file.
#pragma once

#include "verify/LocalFolder.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace verify {

/// A comparison piece by piece, with a buffer for one piece of the file.
class ByteComparison
{
public:
    /// Compares from the current position of the file on.
    explicit ByteComparison(LocalFile& file) : m_file(file) {}

    /// Compares the next bytes. Returns false once a byte differs, or cannot be read from the file.
    bool take(std::string_view bytes);

    bool isSame() const { return m_same; }
    /// Returns the number of equal bytes from the start.
    std::uint64_t compared() const { return m_compared; }

private:
    LocalFile& m_file;
    std::vector<char> m_buffer;
    std::uint64_t m_compared = 0;
    bool m_same = true;
};

} // namespace verify
