#include "base/text.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "base/byte_words.h"

namespace zorvel {
namespace {

struct CodePoint {
    utf8proc_int32_t value = 0;
    std::size_t length = 0;  // of its well-formed sequence (Unicode Standard, table 3-7); 0: none
};

CodePoint codePointAt(std::string_view text, std::size_t at) {
    CodePoint point;
    const auto length =
        utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + at,
                         static_cast<utf8proc_ssize_t>(text.size() - at), &point.value);
    if (length > 0) point.length = static_cast<std::size_t>(length);
    return point;
}

std::size_t asciiPrefix(std::string_view text) {
    std::size_t i = 0;
    for (; i + wordSize <= text.size(); i += wordSize) {
        if ((wordAt(text.data() + i) & 0x8080808080808080U) != 0) break;
    }
    while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80) ++i;
    return i;
}

// Below U+0300, which begins with the byte 0xCC, nothing combines and NFC changes nothing: true of
// ASCII and all of plain Latin. False if it has to be examined.
bool isOwnCanonicalForm(std::string_view text) {
    const std::string_view rest = text.substr(asciiPrefix(text));
    return std::all_of(rest.begin(), rest.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0xCC; });
}

using CodePoints = std::vector<utf8proc_int32_t>;

CodePoints decomposed(std::string_view text) {
    constexpr int longest = 32;  // of one code point; Unicode's are four at most
    CodePoints points;
    points.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const CodePoint point = codePointAt(text, i);
        i += point.length;
        std::array<utf8proc_int32_t, longest> parts{};
        int boundClass = 0;
        const auto count = utf8proc_decompose_char(
            point.value, parts.data(), longest,
            static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_DECOMPOSE), &boundClass);
        points.insert(points.end(), parts.begin(), parts.begin() + count);
    }
    return points;
}

int combiningClass(utf8proc_int32_t point) {
    return utf8proc_get_property(point)->combining_class;
}

// Each run of marks in the order of their classes. utf8proc orders them by swapping neighbours,
// which takes quadratic time over a hostile run.
void orderMarks(CodePoints& points) {
    const auto isMark = [](utf8proc_int32_t point) { return combiningClass(point) != 0; };
    for (auto start = points.begin(); start != points.end();) {
        start = std::find_if(start, points.end(), isMark);
        const auto end = std::find_if_not(start, points.end(), isMark);
        std::stable_sort(start, end, [](utf8proc_int32_t a, utf8proc_int32_t b) {
            return combiningClass(a) < combiningClass(b);
        });
        start = end;
    }
}

bool isSafeOnTerminal(utf8proc_int32_t point) {
    const auto within = [point](utf8proc_int32_t first, utf8proc_int32_t last) {
        return point >= first && point <= last;
    };
    if (within(0x20, 0x7E) || point == '\t') return true;
    return !(within(0, 0x9F) || point == 0x061C || point == 0x200B || within(0x200E, 0x200F) ||
             within(0x2028, 0x202E) || within(0x2060, 0x206F) || point == 0xFEFF ||
             within(0xE0000, 0xE007F));
}

std::string escaped(const char* format, unsigned number) {
    std::array<char, 16> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), format, number);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

void appendEscaped(std::string& line, std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto [point, length] = codePointAt(text, i);
        if (length > 0 && isSafeOnTerminal(point)) {
            line.append(text, i, length);
        } else if (length > 1) {
            line += escaped("\\u%04x", static_cast<unsigned>(point));
        } else {
            line += escaped("\\x%02x", static_cast<unsigned char>(text[i]));
        }
        i += std::max<std::size_t>(length, 1);
    }
}

// The nearest place that is not within a sequence, at most 3 bytes back.
std::size_t sequenceStart(std::string_view text, std::size_t at) {
    std::size_t start = at;
    while (start > 0 && at - start < 3 && (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80)
        --start;
    return start;
}

}  // namespace

bool isAscii(std::string_view text) {
    return asciiPrefix(text) == text.size();
}

std::optional<std::size_t> firstInvalidUtf8(std::string_view text) {
    for (std::size_t i = asciiPrefix(text); i < text.size(); i += asciiPrefix(text.substr(i))) {
        const std::size_t length = codePointAt(text, i).length;
        if (length == 0) return i;
        i += length;
    }
    return std::nullopt;
}

std::string terminalLine(std::string_view text) {
    constexpr std::size_t longest = 1000;  // bytes
    constexpr std::size_t keptAtStart = 600;
    constexpr std::size_t keptAtEnd = 300;
    std::string line;
    if (text.size() <= longest) {
        appendEscaped(line, text);
        return line;
    }
    const std::size_t cut = sequenceStart(text, keptAtStart);
    const std::size_t resumed = sequenceStart(text, text.size() - keptAtEnd);
    appendEscaped(line, text.substr(0, cut));
    line += " [... " + std::to_string(resumed - cut) + " bytes left out ...] ";
    appendEscaped(line, text.substr(resumed));
    return line;
}

std::string canonicalForm(std::string_view text) {
    if (isOwnCanonicalForm(text) || firstInvalidUtf8(text)) return std::string(text);
    CodePoints points = decomposed(text);
    orderMarks(points);
    const auto count = static_cast<utf8proc_ssize_t>(points.size());
    points.push_back(0);  // for the NUL that ends the bytes, which take the place of the points
    const auto length = utf8proc_reencode(
        points.data(), count, static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
    if (length < 0) return std::string(text);
    return {reinterpret_cast<const char*>(points.data()), static_cast<std::size_t>(length)};
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
    if (a == b) return true;
    if (isOwnCanonicalForm(a) && isOwnCanonicalForm(b)) return false;
    return canonicalForm(a) == canonicalForm(b);
}

std::size_t CanonicalHash::operator()(std::string_view text) const {
    if (isOwnCanonicalForm(text)) return std::hash<std::string_view>{}(text);
    return std::hash<std::string>{}(canonicalForm(text));
}

bool isGraphemeBoundary(std::string_view text, std::size_t byte) {
    if (byte == 0 || byte >= text.size() || firstInvalidUtf8(text)) return true;
    utf8proc_int32_t before = -1;
    utf8proc_int32_t state = 0;
    for (std::size_t place = 0; place < text.size();) {
        const auto [point, length] = codePointAt(text, place);
        const bool breaks = before < 0 || utf8proc_grapheme_break_stateful(before, point, &state);
        if (place >= byte) return place == byte && breaks;
        before = point;
        place += length;
    }
    return false;
}

}  // namespace zorvel
