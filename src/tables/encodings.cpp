#include "tables/encodings.h"

#include <array>
#include <cstdint>

#include "base/text.h"

namespace zorvel {
namespace {

// The characters of Windows-1252 from 0x80 to 0x9F; the five bytes without one stand for the
// control characters of Latin-1, as in the WHATWG's standard of encodings.
constexpr std::array<char16_t, 32> upperWindows1252 = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

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

void appendWindows1252(std::string& text, std::string_view bytes) {
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        appendUtf8(text, byte >= 0x80 && byte < 0xA0 ? upperWindows1252[byte - 0x80] : byte);
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
        case TableEncoding::windows1252:
            appendWindows1252(text, bytes);
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
