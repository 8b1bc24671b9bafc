#include "interchange/scan_field.h"

#include <array>

#include "interchange/characters.h"

namespace zorvel {
namespace {

// The bytes at which a delimiter may begin: comma, quote, line feed to carriage return, and the
// first bytes of the longer line breaks.
constexpr std::array<bool, 256> delimiterStarts = [] {
    std::array<bool, 256> starts{};
    for (const int byte : {0x2C, 0x22, 0x0A, 0x0B, 0x0C, 0x0D, 0xC2, 0xE2}) {
        starts[static_cast<std::size_t>(byte)] = true;
    }
    return starts;
}();

// The first delimiter from `at` on, or the text's size.
std::size_t findDelimiter(std::string_view text, std::size_t at) {
    for (; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (!delimiterStarts[byte]) continue;
        if (byte < 0x80 || lineBreakLength(text, at) != 0) break;
    }
    return at;
}

}  // namespace

ScannedField scanField(FieldCursor& cursor) {
    const std::string_view text = cursor.text_;
    const std::size_t start = cursor.position_;
    const std::size_t stop = findDelimiter(text, start);
    if (stop < text.size() && text[stop] == '"') {
        cursor.unquoted_.assign(text, start, stop - start);
        cursor.position_ = stop;
        const FieldTerminator terminator = cursor.scanQuoted();
        return {cursor.unquoted_, terminator, start};
    }
    return {text.substr(start, stop - start), cursor.endField(stop), start};
}

// The rest of a field from its first quote on, appended to the buffer.
FieldTerminator FieldCursor::scanQuoted() {
    bool inQuotes = false;
    std::size_t at = position_;
    for (;;) {
        const std::size_t stop = findDelimiter(text_, at);
        unquoted_.append(text_, at, stop - at);
        at = stop;
        if (at == text_.size()) return endField(at);
        if (text_[at] == '"') {
            ++at;
            const bool doubled = inQuotes && at < text_.size() && text_[at] == '"';
            if (doubled) unquoted_ += text_[at++];
            if (!doubled) inQuotes = !inQuotes;
        } else if (!inQuotes) {
            return endField(at);
        } else {
            unquoted_ += text_[at++];
        }
    }
}

// Moves past the terminator at `at`, which is a comma, a line break or the text's end.
FieldTerminator FieldCursor::endField(std::size_t at) {
    if (at == text_.size()) {
        position_ = at;
        return FieldTerminator::endOfInput;
    }
    if (text_[at] == ',') {
        position_ = skipSpaces(text_, at + 1);
        return FieldTerminator::comma;
    }
    position_ = skipLineBreaks(text_, at);
    return FieldTerminator::lineBreak;
}

}  // namespace zorvel
