// Shared by all fuzz targets: input and checks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Maximum length of a seed. Fuzzed inputs are even shorter (see tests/fuzz/run), because short
/// inputs run faster.
constexpr std::size_t longestInput = 512;

/// Aborts if a property does not hold; the fuzzer then keeps the input.
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

/// A C string in a block of exactly its size, so that any access outside it is detected.
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
