#include "interchange/zero_cells.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace zorvel {
namespace {

std::uint64_t loadWord(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Bytes in which two words agree, from the one that stands first in memory on.
std::size_t equalBytes(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t differs = a ^ b;
    const int bits = std::endian::native == std::endian::little ? std::countr_zero(differs)
                                                                : std::countl_zero(differs);
    return static_cast<std::size_t>(bits) / 8;
}

}  // namespace

std::size_t countZeroCells(std::string_view text) {
    const std::uint64_t zeros = loadWord("0,0,0,0,");
    std::size_t at = 0;
    while (text.size() - at >= sizeof zeros) {
        const std::size_t equal = equalBytes(loadWord(text.data() + at), zeros);
        if (equal < sizeof zeros) return (at + equal) / 2;
        at += equal;
    }
    while (text.size() - at >= 2 && text[at] == '0' && text[at + 1] == ',') at += 2;
    return at / 2;
}

}  // namespace zorvel
