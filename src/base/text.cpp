#include "base/text.h"

#include <utf8proc.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>

namespace zorvel {
namespace {

// Length of the well-formed sequence at the start of text, 0 if there is none (Unicode Standard,
// table 3-7).
std::size_t sequenceLength(const unsigned char* s, std::size_t left) {
    const auto continues = [&](std::size_t i, unsigned low = 0x80, unsigned high = 0xBF) {
        return i < left && s[i] >= low && s[i] <= high;
    };
    const unsigned char lead = s[0];
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return continues(1) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return continues(1, low, high) && continues(2) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return continues(1, low, high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

std::size_t asciiPrefix(std::string_view text) {
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + i, 8);
        if ((word & 0x8080808080808080U) != 0) break;
    }
    while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80) ++i;
    return i;
}

}  // namespace

bool isAscii(std::string_view text) {
    return asciiPrefix(text) == text.size();
}

std::optional<std::size_t> firstInvalidUtf8(std::string_view text) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    std::size_t i = 0;
    while (i < text.size()) {
        i += asciiPrefix(text.substr(i));
        if (i == text.size()) break;
        const std::size_t length = sequenceLength(bytes + i, text.size() - i);
        if (length == 0) return i;
        i += length;
    }
    return std::nullopt;
}

std::string canonicalForm(std::string_view text) {
    if (isAscii(text) || firstInvalidUtf8(text)) return std::string(text);
    utf8proc_uint8_t* mapped = nullptr;
    const auto length =
        utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                     static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                     static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
    if (length < 0) return std::string(text);
    return {reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length)};
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
    if (a == b) return true;
    if (isAscii(a) && isAscii(b)) return false;
    return canonicalForm(a) == canonicalForm(b);
}

int canonicalCompare(std::string_view a, std::string_view b) {
    // The byte order of UTF-8 is the order of its scalar values.
    if (isAscii(a) && isAscii(b)) return a.compare(b);
    return canonicalForm(a).compare(canonicalForm(b));
}

std::size_t CanonicalHash::operator()(std::string_view text) const {
    if (isAscii(text)) return std::hash<std::string_view>{}(text);
    return std::hash<std::string>{}(canonicalForm(text));
}

}  // namespace zorvel
