// Eight bytes of a text at a time, in loops over large tables. Any thread.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zorvel {

constexpr std::size_t wordSize = sizeof(std::uint64_t);

// The bytes from there on, in the order of the processor.
inline std::uint64_t wordAt(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, wordSize);
    return word;
}

// Bytes in which two words agree, from the first in memory on.
inline std::size_t agreeingBytes(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t differs = a ^ b;
    const int bits = std::endian::native == std::endian::little ? std::countr_zero(differs)
                                                                : std::countl_zero(differs);
    return static_cast<std::size_t>(bits) / 8;
}

// Calls use(i) for the places of words that cover a text of that size, which is at least a word:
// the last may overlap the one before. Ends where it returns false, and returns that.
template <class Use>
bool forWords(std::size_t size, Use use) {
    for (std::size_t i = 0; i + wordSize < size; i += wordSize) {
        if (!use(i)) return false;
    }
    return use(size - wordSize);
}

}  // namespace zorvel
