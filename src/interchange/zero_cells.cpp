#include "interchange/zero_cells.h"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zorvel {
namespace {

constexpr const char* sixteenBytes = "0,0,0,0,0,0,0,0,";

// Bytes at the front in which two words of the text's byte order agree.
std::size_t equalBytes(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t differs = a ^ b;
    const int bits = std::endian::native == std::endian::little ? std::countr_zero(differs)
                                                                : std::countl_zero(differs);
    return static_cast<std::size_t>(bits) / 8;
}

}  // namespace

std::size_t countZeroCellsPortably(std::string_view text) {
    std::uint64_t zeros = 0;
    std::memcpy(&zeros, sixteenBytes, 8);
    std::size_t at = 0;
    while (text.size() - at >= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, 8);
        const std::size_t equal = equalBytes(word, zeros);
        at += equal & ~std::size_t{1};
        if (equal < 8) return at / 2;
    }
    while (text.size() - at >= 2 && text[at] == '0' && text[at + 1] == ',') at += 2;
    return at / 2;
}

std::size_t countZeroCells(std::string_view text) {
#if defined(__SSE2__)
    const __m128i zeros = _mm_loadu_si128(reinterpret_cast<const __m128i*>(sixteenBytes));
    std::size_t at = 0;
    while (text.size() - at >= 16) {
        const auto* bytes = reinterpret_cast<const __m128i*>(text.data() + at);
        const __m128i same = _mm_cmpeq_epi8(_mm_loadu_si128(bytes), zeros);
        const auto differs = ~static_cast<std::uint32_t>(_mm_movemask_epi8(same)) & 0xFFFFU;
        if (differs != 0) return (at + static_cast<std::size_t>(std::countr_zero(differs))) / 2;
        at += 16;
    }
    return at / 2 + countZeroCellsPortably(text.substr(at));
#else
    return countZeroCellsPortably(text);
#endif
}

}  // namespace zorvel
