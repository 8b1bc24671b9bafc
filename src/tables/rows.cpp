#include "tables/rows.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

#include "base/byte_words.h"
#include "tables/encodings.h"

namespace zorvel {
namespace {

constexpr std::size_t pieceSize = 1 << 16;

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

bool isBreak(char c) {
    return c == '\n' || c == '\r';
}

bool isZeroCell(std::string_view cell) {
    return cell.size() == 1 && cell.front() == '0';
}

// Whether a cell may have a blank, a break or a part of a no-break space at this end.
bool mayBeTrimmed(char c) {
    return c <= ' ' || static_cast<unsigned char>(c) >= 0x80;
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

// Most cells of a census matrix are zeros: they are read four at a time.
constexpr std::size_t zeroCellsAtOnce = 4;

std::uint64_t zeroCells(char separator) {
    std::array<char, 2 * zeroCellsAtOnce> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = i % 2 == 0 ? '0' : separator;
    return wordAt(bytes.data());
}

}  // namespace

std::string_view withoutBlanks(std::string_view cell) {
    constexpr std::string_view noBreakSpace = "\u00A0";
    for (;;) {
        if (!cell.empty() && (isBlank(cell.front()) || isBreak(cell.front()))) {
            cell.remove_prefix(1);
        } else if (!cell.empty() && (isBlank(cell.back()) || isBreak(cell.back()))) {
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

std::string_view SparseRow::cellAfterZeros(std::size_t column) const {
    if (column >= width) return {};
    const auto found = std::lower_bound(columns.begin(), columns.end(), column);
    if (found == columns.end() || *found != column) return "0";
    return cells[static_cast<std::size_t>(found - columns.begin())];
}

bool RowSource::nextSparse(SparseRow& row) {
    if (!next(row_)) return false;
    cells_.clear();
    columns_.clear();
    for (std::size_t column = 0; column < row_.cells.size(); ++column) {
        const std::string_view cell = row_.cells[column];
        if (isZeroCell(cell)) continue;
        cells_.push_back(cell);
        columns_.push_back(static_cast<std::uint32_t>(column));
    }
    row = {row_.number, row_.line, row_.cells.size(), cells_, columns_};
    return true;
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
    setSeparator(form_.separator);
    fill();
    skipMarkAndHint();
}

void TextRows::skipMarkAndHint() {
    if (buffer_.starts_with("\xEF\xBB\xBF")) buffer_.erase(0, 3);
    if (hintedSeparator(buffer_) == 0) return;
    TableRow hint;
    const char separator = form_.separator;
    setSeparator('\n');
    next(hint);
    setSeparator(separator);
}

void TextRows::setSeparator(char separator) {
    form_.separator = separator;
    ends_.fill(false);
    for (const char c : {separator, '\n', '\r', separator == ' ' ? '\t' : separator}) {
        ends_[static_cast<unsigned char>(c)] = true;
    }
    stops_ = ends_;
    stops_[0] = true;
}

// Adds a piece to the buffer, or notes the end.
void TextRows::fill() {
    makeRoom();
    const std::size_t size = buffer_.size();
    if (form_.encoding == TableEncoding::utf8) {
        buffer_.resize(size + pieceSize);
        const std::size_t count = source_(buffer_.data() + size, pieceSize);
        buffer_.resize(size + count);
        ended_ = count == 0;
        return;
    }
    const std::size_t kept = undecoded_.size();
    undecoded_.resize(kept + pieceSize);
    const std::size_t count = source_(undecoded_.data() + kept, pieceSize);
    undecoded_.resize(kept + count);
    ended_ = count == 0;
    undecoded_.erase(0, appendDecoded(buffer_, undecoded_, form_.encoding, ended_));
}

// For a piece in any encoding. The cells of the row follow their text.
void TextRows::makeRoom() {
    constexpr std::size_t needed = 3 * (pieceSize + 4);
    if (buffer_.capacity() - buffer_.size() >= needed) return;
    std::string larger;
    larger.reserve(2 * buffer_.size() + needed);
    larger = buffer_;
    for (std::size_t i = 0; i < used_; ++i) {
        std::string_view& cell = cells_[i];
        cell = {larger.data() + (cell.data() - buffer_.data()), cell.size()};
    }
    buffer_.swap(larger);
}

inline void TextRows::add(std::string_view cell) {
    const bool trims =
        !form_.exact && !cell.empty() && (mayBeTrimmed(cell.front()) || mayBeTrimmed(cell.back()));
    if (trims) cell = withoutBlanks(cell);
    const std::size_t column = width_++;
    if (isSparse_ && isZeroCell(cell)) return;
    makePlaces(1);
    cells_[used_] = cell;
    if (isSparse_) columns_[used_] = static_cast<std::uint32_t>(column);
    ++used_;
}

void TextRows::growPlaces(std::size_t needed) {
    cells_.resize(needed + needed / 8 + 16);
    if (isSparse_) columns_.resize(cells_.size());
}

// Cells of one letter, each followed by a separator.
inline void TextRows::addZeros(const char* first, std::size_t count) {
    width_ += count;
    if (isSparse_) return;
    makePlaces(count);
    for (std::size_t i = 0; i < count; ++i) cells_[used_ + i] = {first + 2 * i, 1};
    used_ += count;
}

bool TextRows::has(std::size_t at) {
    while (at >= buffer_.size() && !ended_) fill();
    return at < buffer_.size();
}

bool TextRows::atBreak(std::size_t at) {
    return !has(at) || isBreak(buffer_[at]);
}

// The next separator or line break from `at` on, or the end of the text.
std::size_t TextRows::findEnd(std::size_t at) {
    while (has(at) && !isEnd(buffer_[at])) ++at;
    return at;
}

// The way through nearly all cells: those that are whole in the buffer and have no quotes. True at
// the end of the row, false before another cell.
bool TextRows::addPlainCells() {
    const std::uint64_t zeros = zeroCells(form_.separator);
    const bool blanks = form_.separator == ' ';
    const char* at = buffer_.data() + at_;
    const char* const end = buffer_.data() + buffer_.size();
    bool rowEnds = false;
    while (!rowEnds) {
        while (blanks && at < end && isBlank(*at)) ++at;
        if (end - at >= static_cast<std::ptrdiff_t>(sizeof zeros) && form_.separator != '0') {
            const std::size_t count = agreeingBytes(wordAt(at), zeros) / 2;
            addZeros(at, count);
            at += 2 * count;
            if (count == zeroCellsAtOnce) continue;
        }
        const char* stop = at;
        while (!stops_[static_cast<unsigned char>(*stop)]) ++stop;
        const bool isOther = *stop == '\0' || (blanks && stop == at) || *at == '"';
        if (isOther) break;
        add({at, static_cast<std::size_t>(stop - at)});
        rowEnds = isBreak(*stop);
        at = rowEnds ? stop : stop + 1;
    }
    at_ = static_cast<std::size_t>(at - buffer_.data());
    return rowEnds;
}

void TextRows::addCells() {
    const bool blanks = form_.separator == ' ';
    while (!addPlainCells()) {
        while (blanks && has(at_) && isBlank(buffer_[at_])) ++at_;
        if (blanks && atBreak(at_)) return;
        const bool quoted = form_.quotes && has(at_) && buffer_[at_] == '"' && addQuotedCell();
        if (!quoted) {
            const std::size_t end = findEnd(at_);
            add(std::string_view(buffer_).substr(at_, end - at_));
            at_ = end;
        }
        if (atBreak(at_)) return;
        ++at_;
    }
}

// False if no quote closes the cell; nothing is read then.
bool TextRows::addQuotedCell() {
    const std::size_t start = at_ + 1;
    std::size_t doubled = 0;
    for (std::size_t i = start; has(i) && (form_.exact || i - start < longestCell); ++i) {
        if (buffer_[i] != '"') continue;
        if (has(i + 1) && buffer_[i + 1] == '"') {
            ++doubled;
            ++i;
            continue;
        }
        if (findEnd(i + 1) != i + 1) return false;
        std::size_t length = i - start;
        line_ += lineBreaks(std::string_view(buffer_).substr(start, length));
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
        add(std::string_view(buffer_).substr(start, length));
        at_ = i + 1;
        return true;
    }
    return false;
}

// False after the last row.
bool TextRows::readRow(bool isSparse) {
    if (at_ >= pieceSize) {
        buffer_.erase(0, at_);
        at_ = 0;
    }
    used_ = 0;
    width_ = 0;
    isSparse_ = isSparse;
    if (!has(at_)) return false;
    addCells();
    if (has(at_) && buffer_[at_] == '\r' && has(at_ + 1) && buffer_[at_ + 1] == '\n') ++at_;
    if (has(at_)) ++at_;
    return true;
}

bool TextRows::next(TableRow& row) {
    row.number = ++row_;
    row.line = ++line_;
    cells_.swap(row.cells);
    if (!readRow(false)) return false;
    cells_.resize(used_);
    cells_.swap(row.cells);
    return true;
}

bool TextRows::nextSparse(SparseRow& row) {
    ++row_;
    const std::size_t line = ++line_;
    columns_.resize(cells_.size());
    if (!readRow(true)) return false;
    row = {row_, line, width_, {cells_.data(), used_}, {columns_.data(), used_}};
    return true;
}

}  // namespace zorvel
