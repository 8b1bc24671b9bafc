#include "tables/encodings.h"

#include <array>
#include <cstdint>

#include "base/text.h"

namespace zorvel {
namespace {

// The characters from 0x80 on of the encodings of one byte a letter, as in the WHATWG's standard of
// encodings: bytes without one stand for the control characters of Latin-1.
using UpperHalf = std::array<char16_t, 128>;

constexpr UpperHalf windows1250 = {
    0x20AC, 0x81,   0x201A, 0x83,   0x201E, 0x2026, 0x2020, 0x2021, 0x88,   0x2030, 0x0160, 0x2039,
    0x015A, 0x0164, 0x017D, 0x0179, 0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x98,   0x2122, 0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A, 0xA0,   0x02C7, 0x02D8, 0x0141,
    0xA4,   0x0104, 0xA6,   0xA7,   0xA8,   0xA9,   0x015E, 0xAB,   0xAC,   0xAD,   0xAE,   0x017B,
    0xB0,   0xB1,   0x02DB, 0x0142, 0xB4,   0xB5,   0xB6,   0xB7,   0xB8,   0x0105, 0x015F, 0xBB,
    0x013D, 0x02DD, 0x013E, 0x017C, 0x0154, 0xC1,   0xC2,   0x0102, 0xC4,   0x0139, 0x0106, 0xC7,
    0x010C, 0xC9,   0x0118, 0xCB,   0x011A, 0xCD,   0xCE,   0x010E, 0x0110, 0x0143, 0x0147, 0xD3,
    0xD4,   0x0150, 0xD6,   0xD7,   0x0158, 0x016E, 0xDA,   0x0170, 0xDC,   0xDD,   0x0162, 0xDF,
    0x0155, 0xE1,   0xE2,   0x0103, 0xE4,   0x013A, 0x0107, 0xE7,   0x010D, 0xE9,   0x0119, 0xEB,
    0x011B, 0xED,   0xEE,   0x010F, 0x0111, 0x0144, 0x0148, 0xF3,   0xF4,   0x0151, 0xF6,   0xF7,
    0x0159, 0x016F, 0xFA,   0x0171, 0xFC,   0xFD,   0x0163, 0x02D9};

constexpr UpperHalf windows1252 = [] {
    constexpr std::array<char16_t, 32> start = {
        0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    UpperHalf all{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i] = i < start.size() ? start[i] : static_cast<char16_t>(0x80 + i);
    }
    return all;
}();

void appendUtf8(std::string& text, char32_t c) {
    const auto byte = [&text](char32_t value) { text += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

void appendBytes(std::string& text, std::string_view bytes, const UpperHalf& upper) {
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        appendUtf8(text, byte >= 0x80 ? upper[byte - 0x80] : byte);
    }
}

// Returns the number of bytes read; fewer than four may be left if a character is not complete.
std::size_t appendUtf16(std::string& text, std::string_view bytes, bool bigEndian, bool atEnd) {
    const auto unit = [&](std::size_t i) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        return static_cast<char32_t>(bigEndian ? first << 8 | second : second << 8 | first);
    };
    std::size_t i = 0;
    for (; i + 2 <= bytes.size(); i += 2) {
        char32_t c = unit(i);
        if (c >= 0xD800 && c < 0xDC00) {
            if (i + 4 > bytes.size() && !atEnd) return i;
            const char32_t low = i + 4 <= bytes.size() ? unit(i + 2) : 0;
            const bool paired = low >= 0xDC00 && low < 0xE000;
            c = paired ? 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00) : 0xFFFD;
            if (paired) i += 2;
        } else if (c >= 0xDC00 && c < 0xE000) {
            c = 0xFFFD;
        }
        appendUtf8(text, c);
    }
    return i;
}

}  // namespace

std::size_t appendDecoded(std::string& text, std::string_view bytes, TableEncoding encoding,
                          bool atEnd) {
    switch (encoding) {
        case TableEncoding::utf8:
            text += bytes;
            return bytes.size();
        case TableEncoding::windows1250:
            appendBytes(text, bytes, windows1250);
            return bytes.size();
        case TableEncoding::windows1252:
            appendBytes(text, bytes, windows1252);
            return bytes.size();
        case TableEncoding::utf16LittleEndian:
        case TableEncoding::utf16BigEndian:
            break;
    }
    return appendUtf16(text, bytes, encoding == TableEncoding::utf16BigEndian, atEnd);
}

TableEncoding guessEncoding(std::string_view bytes, bool whole) {
    if (bytes.starts_with("\xFF\xFE")) return TableEncoding::utf16LittleEndian;
    if (bytes.starts_with("\xFE\xFF")) return TableEncoding::utf16BigEndian;
    const std::string_view start = bytes.substr(0, 65536);
    std::array<std::size_t, 2> zeros{};
    for (std::size_t i = 0; i < start.size(); ++i) zeros[i % 2] += start[i] == '\0';
    const std::size_t units = start.size() / 2;
    if (units > 0 && zeros[1] * 2 >= units && zeros[0] * 16 <= zeros[1]) {
        return TableEncoding::utf16LittleEndian;
    }
    if (units > 0 && zeros[0] * 2 >= units && zeros[1] * 16 <= zeros[0]) {
        return TableEncoding::utf16BigEndian;
    }
    const auto invalid = firstInvalidUtf8(bytes);
    const bool cut = invalid && !whole && bytes.size() - *invalid < 4;
    return !invalid || cut ? TableEncoding::utf8 : TableEncoding::windows1252;
}

}  // namespace zorvel
