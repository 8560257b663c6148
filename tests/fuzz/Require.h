// What every fuzz target shares: its input and its judgement.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Seeds are at most this long. The inputs that are invented are shorter for most targets, as
/// tests/fuzz/run tells: short inputs run fast, and the readers' limits lie below or far beyond.
constexpr std::size_t longestInput = 512;

/// Ends the process when a property does not hold; the fuzzer then keeps the input.
inline void require(bool holds, const char* property)
{
    if (!holds) {
        std::cerr << "does not hold: " << property << std::endl;
        std::abort();
    }
}

inline std::string textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// A C string in a block of exactly its size: a reader that leaves it is noticed at the first byte.
class ExactCString
{
public:
    explicit ExactCString(const std::string& text) : m_block(new char[text.size() + 1])
    {
        text.copy(m_block.get(), text.size());
        m_block[text.size()] = '\0';
    }
    const char* get() const { return m_block.get(); }

private:
    std::unique_ptr<char[]> m_block;
};

} // namespace fuzz
