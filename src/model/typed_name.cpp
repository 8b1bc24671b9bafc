#include "model/typed_name.h"

#include <algorithm>
#include <cstddef>

#include "interchange/characters.h"

namespace zorvel {
namespace {

// Bytes of the control character, line break or tab that begins at text[at]; 0 if none does.
std::size_t controlLength(std::string_view text, std::size_t at) {
    if (text.substr(at, 2) == "\r\n") return 2;
    if (const std::size_t length = lineBreakLength(text, at)) return length;
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x20 || first == 0x7F) return 1;
    if (first != 0xC2 || at + 1 == text.size()) return 0;
    const auto second = static_cast<unsigned char>(text[at + 1]);
    return second >= 0x80 && second <= 0x9F ? 2 : 0;
}

std::string onOneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = controlLength(text, i);
        line += length == 0 ? text[i] : ' ';
        i += std::max<std::size_t>(length, 1);
    }
    return line;
}

}  // namespace

std::optional<std::string> typedName(std::string_view typed) {
    const std::string line = onOneLine(typed);
    const std::size_t begin = skipSpaces(line, 0);
    std::size_t end = begin;  // behind the last character that is no space
    for (std::size_t i = begin; i < line.size(); i = skipSpaces(line, i)) {
        if (spaceLength(line, i) == 0) end = ++i;
    }
    if (end == begin) return std::nullopt;
    return line.substr(begin, end - begin);
}

}  // namespace zorvel
