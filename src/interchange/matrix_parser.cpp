#include <algorithm>
#include <cstdint>

#include "base/byte_words.h"
#include "base/numbers.h"
#include "interchange/characters.h"
#include "interchange/parsers.h"
#include "interchange/scan_field.h"

namespace zorvel {
namespace {

using Censuses = std::vector<MockCensus>;

constexpr const char* noCensusMessage = "No censuses could be imported";
constexpr const char* notIntegerMessage = ": Not an abundance value, or not an integer: ";
constexpr const char* negativeMessage =
    ": File contains negative abundance value, but all abundances must be positive integers: ";
constexpr const char* negativeMessageEnd = ".  See help for formatting an input file.";
constexpr const char* moreMessage =
    ": More abundances found in a row than there are species. See help for formatting an input "
    "file.";
constexpr const char* fewerMessage =
    ": Fewer abundances found in a row than there are species. See help for formatting an input "
    "file.";

// The letter that the messages give a cell for what ends it.
char cellKind(FieldTerminator terminator) {
    if (terminator == FieldTerminator::comma) return 'C';
    return terminator == FieldTerminator::lineBreak ? 'B' : 'A';
}

// Up to 18 digits, which fit in 64 bits without a test.
struct PlainNumber {
    std::int64_t value = 0;
    std::size_t digits = 0;
};

PlainNumber readPlainNumber(std::string_view text, std::size_t at) {
    const std::string_view digits = text.substr(at, 18);
    std::int64_t value = 0;
    std::size_t read = 0;
    while (read < digits.size() && digits[read] >= '0' && digits[read] <= '9') {
        value = value * 10 + (digits[read++] - '0');
    }
    return {value, read};
}

// How many whole cells "0," the text begins with. Most cells of a census matrix are zeros, and
// reading them one at a time would be most of the work: this looks at eight bytes at a time.
std::size_t countZeroCells(std::string_view text) {
    const std::uint64_t zeros = wordAt("0,0,0,0,");
    std::size_t at = 0;
    while (text.size() - at >= sizeof zeros) {
        const std::size_t equal = agreeingBytes(wordAt(text.data() + at), zeros);
        if (equal < sizeof zeros) return (at + equal) / 2;
        at += equal;
    }
    while (text.size() - at >= 2 && text[at] == '0' && text[at + 1] == ',') at += 2;
    return at / 2;
}

// Reads one text. The memory in use beside the records is 80 bytes a header cell and 16 bytes a
// non-zero cell of one row.
class MatrixReader {
  public:
    MatrixReader(std::string_view text, const std::stop_token& stop, NamePool& names)
        : cursor_(text), stop_(stop), names_(names) {}

    Parsed<Censuses> read() {
        FieldTerminator terminator = readHeader();
        while (terminator != FieldTerminator::endOfInput) {
            if (stop_.stop_requested()) return {};
            if (!readRow(terminator)) return std::move(problem_);
        }
        if (censuses_.empty()) return refused<Censuses>(noCensusMessage);
        Parsed<Censuses> result;
        result.value = std::move(censuses_);
        result.leftOut = leftOut_;
        return result;
    }

  private:
    // A cell that stands for a taxon: its abundance and its column, the first after the name
    // being 1.
    struct PresentCell {
        std::int64_t abundance;
        std::size_t column;
    };

    FieldTerminator readHeader() {
        for (;;) {
            const ScannedField field = scanField(cursor_);
            if (!field.onlyEndsRow()) header_.push_back(names_.intern(field.text));
            if (field.terminator == FieldTerminator::comma) continue;
            species_ = std::max<std::size_t>(header_.size(), 1) - 1;
            return field.terminator;
        }
    }

    // False: there is a problem.
    bool readRow(FieldTerminator& terminator) {
        const ScannedField field = scanField(cursor_);
        terminator = field.terminator;
        if (field.onlyEndsRow()) return true;
        std::string name(field.text);
        present_.clear();
        std::size_t cells = 0;
        if (terminator == FieldTerminator::comma && !readCells(terminator, cells)) return false;
        if (name == importedCensusName) {
            ++leftOut_.markedRows;
            return true;
        }
        addCensus(std::move(name));
        leftOut_.zeroCells += cells - present_.size();
        if (cells < species_) ++leftOut_.shortRows;
        return true;
    }

    // cells: how many the row has, without an empty last one.
    bool readCells(FieldTerminator& terminator, std::size_t& cells) {
        for (std::size_t column = 1;; ++column) {
            column = readPlainCells(column);
            const ScannedField field = scanField(cursor_);
            terminator = field.terminator;
            cells = column - 1;
            if (field.onlyEndsRow()) return true;
            if (!readCell(field, column)) return false;
            cells = column;
            if (terminator != FieldTerminator::comma) return true;
        }
    }

    // The way through nearly all cells: only digits, ended by a comma. Stops before any cell that
    // is written otherwise, is very large or has no name, and returns its column.
    std::size_t readPlainCells(std::size_t column) {
        const std::string_view text = cursor_.text();
        std::size_t at = cursor_.position();
        for (;;) {
            const std::size_t zeros = countZeroCells(text.substr(at));
            column += zeros;
            if (zeros != 0) at = skipSpaces(text, at + 2 * zeros);
            const PlainNumber number = readPlainNumber(text, at);
            const std::size_t end = at + number.digits;
            if (number.digits == 0 || end == text.size() || text[end] != ',') break;
            if (number.value != 0) {
                if (column >= header_.size()) break;
                present_.push_back({number.value, column});
            }
            ++column;
            at = skipSpaces(text, end + 1);
        }
        cursor_.moveTo(at);
        return column;
    }

    bool readCell(const ScannedField& field, std::size_t column) {
        const auto value = parseWholeInteger(field.text);
        if (!value) return refuse(field, column, notIntegerMessage, field.text);
        if (*value < 0) {
            return refuse(field, column, negativeMessage, field.text, negativeMessageEnd);
        }
        if (field.terminator != FieldTerminator::comma) {
            // Each column up to this one has given an abundance.
            if (column > species_) return refuse(field, column, moreMessage);
            if (column < species_) return refuse(field, column, fewerMessage);
        }
        if (*value == 0) return true;
        if (column >= header_.size()) {
            // It has no name: the row has too many abundances, as its end would report.
            ScannedField ending = field;
            ending.terminator = FieldTerminator::lineBreak;
            return refuse(ending, column, moreMessage);
        }
        present_.push_back({*value, column});
        return true;
    }

    // Notes the problem; always false. A quoted cell's text is copied once, whatever its size.
    bool refuse(const ScannedField& field, std::size_t column, std::string_view message,
                std::string_view quoted = {}, std::string_view end = {}) {
        std::string line;
        line.reserve(1 + message.size() + quoted.size() + end.size());
        line += cellKind(field.terminator);
        line.append(message).append(quoted).append(end);
        const TextPlace place{lineNumber(cursor_.text(), field.start), column + 1};
        problem_ = refused<Censuses>(std::move(line), place);
        return false;
    }

    void addCensus(std::string name) {
        MockCensus& census = censuses_.emplace_back();
        census.name = std::move(name);
        census.taxa.reserve(present_.size());
        for (const PresentCell& cell : present_) {
            census.taxa.push_back({cell.abundance, header_[cell.column]});
        }
    }

    FieldCursor cursor_;
    const std::stop_token& stop_;
    NamePool& names_;
    std::vector<SharedText> header_;  // the corner cell included
    std::size_t species_ = 0;
    std::vector<PresentCell> present_;  // of the row under way
    Censuses censuses_;
    LeftOut leftOut_;
    Parsed<Censuses> problem_;
};

}  // namespace

Parsed<std::vector<MockCensus>> parseCensusMatrix(std::string_view text,
                                                  const std::stop_token& stop, NamePool* names) {
    NamePool own;
    return MatrixReader(text, stop, names ? *names : own).read();
}

}  // namespace zorvel
