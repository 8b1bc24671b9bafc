#include "interchange/lines.h"

#include "interchange/characters.h"

namespace zorvel {
namespace {

// True of the first byte of every line break, and of few others.
bool mayBreakLine(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= '\n' && byte <= '\r') || byte == 0xC2 || byte == 0xE2;
}

}  // namespace

std::size_t lineEnd(std::string_view text, std::size_t at) {
    while (at < text.size() && !(mayBreakLine(text[at]) && lineBreakLength(text, at) > 0)) ++at;
    return at;
}

}  // namespace zorvel
