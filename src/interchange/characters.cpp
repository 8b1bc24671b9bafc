#include "interchange/characters.h"

namespace zorvel {
namespace {

unsigned char byteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// True of the first byte of every line break, and of few others.
bool mayBreakLine(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= '\n' && byte <= '\r') || byte == 0xC2 || byte == 0xE2;
}

// U+2000 to U+200A, U+202F and U+205F, whose first byte E2 has been read.
bool isPunctuationBlockSpace(unsigned char second, unsigned char third) {
    if (second == 0x80) return (third >= 0x80 && third <= 0x8A) || third == 0xAF;
    return second == 0x81 && third == 0x9F;
}

}  // namespace

std::size_t lineBreakLength(std::string_view text, std::size_t at) {
    const unsigned char first = byteAt(text, at);
    if (first >= 0x0A && first <= 0x0D) return 1;
    if (first == 0xC2) return byteAt(text, at + 1) == 0x85 ? 2 : 0;
    if (first != 0xE2 || byteAt(text, at + 1) != 0x80) return 0;
    const unsigned char third = byteAt(text, at + 2);
    return third == 0xA8 || third == 0xA9 ? 3 : 0;
}

std::size_t spaceLength(std::string_view text, std::size_t at) {
    const unsigned char first = byteAt(text, at);
    if (first == ' ' || first == '\t') return 1;
    if (first < 0xC2) return 0;
    const unsigned char second = byteAt(text, at + 1);
    if (first == 0xC2) return second == 0xA0 ? 2 : 0;
    const unsigned char third = byteAt(text, at + 2);
    if (first == 0xE1) return second == 0x9A && third == 0x80 ? 3 : 0;
    if (first == 0xE2) return isPunctuationBlockSpace(second, third) ? 3 : 0;
    return first == 0xE3 && second == 0x80 && third == 0x80 ? 3 : 0;
}

std::size_t lineEnd(std::string_view text, std::size_t at) {
    while (at < text.size() && !(mayBreakLine(text[at]) && lineBreakLength(text, at) > 0)) ++at;
    return at;
}

std::size_t skipLineBreaks(std::string_view text, std::size_t at) {
    while (const std::size_t length = lineBreakLength(text, at)) at += length;
    return at;
}

std::size_t skipSpaces(std::string_view text, std::size_t at) {
    while (const std::size_t length = spaceLength(text, at)) at += length;
    return at;
}

std::size_t lineNumber(std::string_view text, std::size_t at) {
    std::size_t line = 1;
    for (std::size_t i = 0; i < at && i < text.size();) {
        const std::size_t length = lineBreakLength(text, i);
        if (length != 0 && !(text[i] == '\r' && byteAt(text, i + 1) == '\n')) ++line;
        i += length == 0 ? 1 : length;
    }
    return line;
}

}  // namespace zorvel
