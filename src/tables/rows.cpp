#include "tables/rows.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace zorvel {
namespace {

constexpr std::size_t pieceSize = 1 << 16;

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

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// CR LF is one.
std::size_t lineBreaks(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        count +=
            text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'));
    }
    return count;
}

}  // namespace

std::string_view withoutBlanks(std::string_view cell) {
    constexpr std::string_view noBreakSpace = "\u00A0";
    for (;;) {
        if (!cell.empty() &&
            (isBlank(cell.front()) || cell.front() == '\n' || cell.front() == '\r')) {
            cell.remove_prefix(1);
        } else if (!cell.empty() &&
                   (isBlank(cell.back()) || cell.back() == '\n' || cell.back() == '\r')) {
            cell.remove_suffix(1);
        } else if (cell.starts_with(noBreakSpace)) {
            cell.remove_prefix(noBreakSpace.size());
        } else if (cell.ends_with(noBreakSpace)) {
            cell.remove_suffix(noBreakSpace.size());
        } else {
            return cell;
        }
    }
}

ByteSource bytesOf(std::string_view bytes) {
    return [bytes](char* place, std::size_t size) mutable {
        const std::size_t count = std::min(size, bytes.size());
        std::memcpy(place, bytes.data(), count);
        bytes.remove_prefix(count);
        return count;
    };
}

char hintedSeparator(std::string_view text) {
    if (text.size() < 6 || (text[5] != '\n' && text[5] != '\r')) return 0;
    const std::string_view word = text.substr(0, 4);
    return word == "sep=" || word == "SEP=" || word == "Sep=" ? text[4] : '\0';
}

TextRows::TextRows(ByteSource source, TextForm form) : source_(std::move(source)), form_(form) {
    fill();
    skipMarkAndHint();
}

void TextRows::skipMarkAndHint() {
    if (buffer_.starts_with("\xEF\xBB\xBF")) buffer_.erase(0, 3);
    if (hintedSeparator(buffer_) == 0) return;
    TableRow hint;
    const char separator = std::exchange(form_.separator, '\0');
    next(hint);
    form_.separator = separator;
}

// Adds a piece to the buffer, or notes the end.
void TextRows::fill() {
    std::string piece = std::move(undecoded_);
    undecoded_.clear();
    const std::size_t kept = piece.size();
    piece.resize(kept + pieceSize);
    const std::size_t count = source_(piece.data() + kept, pieceSize);
    piece.resize(kept + count);
    ended_ = count == 0;
    switch (form_.encoding) {
        case TableEncoding::utf8:
            buffer_ += piece;
            return;
        case TableEncoding::windows1252:
            appendWindows1252(buffer_, piece);
            return;
        case TableEncoding::utf16LittleEndian:
        case TableEncoding::utf16BigEndian:
            break;
    }
    const bool bigEndian = form_.encoding == TableEncoding::utf16BigEndian;
    undecoded_ = piece.substr(appendUtf16(buffer_, piece, bigEndian, ended_));
}

bool TextRows::has(std::size_t at) {
    while (at >= buffer_.size() && !ended_) fill();
    return at < buffer_.size();
}

bool TextRows::atBreak(std::size_t at) {
    return !has(at) || buffer_[at] == '\n' || buffer_[at] == '\r';
}

// The next separator or line break from `at` on, or the end of the text.
std::size_t TextRows::findEnd(std::size_t at) {
    const char separator = form_.separator;
    const char other = separator == ' ' ? '\t' : separator;
    do {
        for (const std::size_t size = buffer_.size(); at < size; ++at) {
            const char c = buffer_[at];
            if (c == separator || c == '\n' || c == '\r' || c == other) return at;
        }
    } while (has(at));
    return buffer_.size();
}

void TextRows::addPlainCell() {
    const std::size_t end = findEnd(at_);
    places_.emplace_back(at_, end - at_);
    at_ = end;
}

// False if no quote closes the cell; nothing is read then.
bool TextRows::addQuotedCell() {
    const std::size_t start = at_ + 1;
    std::size_t doubled = 0;
    for (std::size_t i = start; has(i) && i - start < longestCell; ++i) {
        if (buffer_[i] != '"') continue;
        if (has(i + 1) && buffer_[i + 1] == '"') {
            ++doubled;
            ++i;
            continue;
        }
        if (findEnd(i + 1) != i + 1) return false;
        std::size_t length = i - start;
        if (doubled > 0) {
            // Closes the gaps; what follows the cell stays where it is.
            char* const cell = buffer_.data() + start;
            std::size_t kept = 0;
            for (std::size_t j = 0; j < length; ++j) {
                cell[kept++] = cell[j];
                if (cell[j] == '"') ++j;
            }
            length = kept;
        }
        places_.emplace_back(start, length);
        at_ = i + 1;
        return true;
    }
    return false;
}

bool TextRows::next(TableRow& row) {
    if (at_ >= pieceSize) {
        buffer_.erase(0, at_);
        at_ = 0;
    }
    if (!has(at_)) return false;
    const std::size_t start = at_;
    places_.clear();
    const bool blanks = form_.separator == ' ';
    for (;;) {
        while (blanks && has(at_) && isBlank(buffer_[at_])) ++at_;
        if (blanks && atBreak(at_)) break;
        const bool quoted = form_.quotes && has(at_) && buffer_[at_] == '"' && addQuotedCell();
        if (!quoted) addPlainCell();
        if (atBreak(at_)) break;
        ++at_;
    }
    if (has(at_) && buffer_[at_] == '\r' && has(at_ + 1) && buffer_[at_ + 1] == '\n') ++at_;
    if (has(at_)) ++at_;
    row.number = ++row_;
    row.line = line_ + 1;
    line_ += lineBreaks(std::string_view(buffer_).substr(start, at_ - start));
    row.cells.clear();
    for (const auto& [place, length] : places_) {
        row.cells.push_back(withoutBlanks(std::string_view(buffer_).substr(place, length)));
    }
    return true;
}

}  // namespace zorvel
