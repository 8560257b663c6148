#include "verify/ByteComparison.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace verify {

bool ByteComparison::take(std::string_view bytes)
{
    if (!m_same) {
        return false;
    }
    m_buffer.resize(std::max(m_buffer.size(), bytes.size()));
    const std::size_t count = m_file.read(m_buffer.data(), bytes.size());
    if (std::memcmp(bytes.data(), m_buffer.data(), count) == 0) { // fast path: usually equal
        m_compared += count;
        m_same = count == bytes.size();
    } else {
        const auto place = std::mismatch(bytes.begin(), bytes.end(), m_buffer.begin()).first;
        m_compared += static_cast<std::size_t>(place - bytes.begin());
        m_same = false;
    }
    return m_same;
}

} // namespace verify
