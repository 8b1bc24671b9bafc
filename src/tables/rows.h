// The rows of a table, one after the other. Only one row is in memory at a time, whatever the size
// of the table. One thread at a time per source.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/result.h"

namespace zorvel {

enum class TableEncoding { utf8, utf16LittleEndian, utf16BigEndian, windows1250, windows1252 };

// How the bytes of a text become cells.
struct TextForm {
    TableEncoding encoding = TableEncoding::utf8;
    char separator = ',';  // ' ' stands for any run of blanks
    // A double quote that opens a cell encloses it; otherwise it is a letter like any other.
    bool quotes = true;
    // Cells keep their blanks and may have any length.
    bool exact = false;

    friend bool operator==(const TextForm&, const TextForm&) = default;
};

struct TableRow {
    std::size_t number = 0;  // from 1; empty rows count
    std::size_t line = 0;    // where it begins in a text, from 1; differs where cells hold breaks
    std::vector<std::string_view> cells;  // without surrounding blanks; valid until the next row

    // The empty text beyond the last cell. column counts from 0.
    [[nodiscard]] std::string_view cell(std::size_t column) const {
        return column < cells.size() ? cells[column] : std::string_view();
    }
};

// A row without its cells "0", which are most cells of most tables of counts: reading is several
// times faster where they need not be held.
struct SparseRow {
    std::size_t number = 0;  // as in TableRow
    std::size_t line = 0;
    std::size_t width = 0;                    // the number of cells, zeros included
    std::span<const std::string_view> cells;  // the others
    std::span<const std::uint32_t> columns;   // of each, ascending

    // As TableRow::cell().
    [[nodiscard]] std::string_view cell(std::size_t column) const {
        // Few tables have zeros before their names.
        const bool isThere = column < columns.size() && columns[column] == column;
        return isThere ? cells[column] : cellAfterZeros(column);
    }

  private:
    [[nodiscard]] std::string_view cellAfterZeros(std::size_t column) const;
};

class RowSource {
  public:
    RowSource() = default;
    virtual ~RowSource() = default;
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;

    // False after the last row; row is then undefined.
    virtual bool next(TableRow& row) = 0;
    // The same in the other form; calls of both may follow each other.
    virtual bool nextSparse(SparseRow& row);
    // After that: why it is not the last row of the table.
    [[nodiscard]] virtual std::optional<Problem> problem() const { return std::nullopt; }

  private:
    // Of nextSparse().
    TableRow row_;
    std::vector<std::string_view> cells_;
    std::vector<std::uint32_t> columns_;
};

// A cell without the blanks and line breaks around its text.
std::string_view withoutBlanks(std::string_view cell);

// Puts up to size bytes at the place and returns their number; 0 at the end.
using ByteSource = std::function<std::size_t(char* bytes, std::size_t size)>;

// The bytes of a text in memory, which must outlive the source.
ByteSource bytesOf(std::string_view bytes);

// The rows of a text in UTF-8, whatever its own encoding. Ill-formed UTF-8 stays as it is; a unit
// that is not valid UTF-16 becomes U+FFFD. A byte-order mark and a first line "sep=X" are left out;
// the line is counted. A cell opens with a quote only as its first character, and the quote closes
// only before a separator or the end of a line; a quote that never closes so is a letter.
class TextRows final : public RowSource {
  public:
    // A cell longer than this ends at the next separator or line break, quoted or not.
    static constexpr std::size_t longestCell = 1 << 20;

    TextRows(ByteSource source, TextForm form);
    bool next(TableRow& row) override;
    bool nextSparse(SparseRow& row) override;

  private:
    bool readRow(bool isSparse);
    void fill();
    void makeRoom();
    bool has(std::size_t at);
    bool atBreak(std::size_t at);
    void setSeparator(char separator);
    [[nodiscard]] bool isEnd(char c) const { return ends_[static_cast<unsigned char>(c)]; }
    std::size_t findEnd(std::size_t at);
    void makePlaces(std::size_t count) {
        if (used_ + count > cells_.size()) growPlaces(used_ + count);
    }
    void growPlaces(std::size_t needed);
    void add(std::string_view cell);
    void addZeros(const char* first, std::size_t count);
    void addCells();
    bool addPlainCells();
    bool addQuotedCell();
    void skipMarkAndHint();

    ByteSource source_;
    TextForm form_;
    std::string buffer_;             // UTF-8, from the start of the current row
    std::string undecoded_;          // bytes of a character that is not complete
    std::array<bool, 256> ends_{};   // separators and line breaks
    std::array<bool, 256> stops_{};  // these, and the NUL that follows the buffer
    // Of the row under way; the first used_ are filled.
    std::vector<std::string_view> cells_;
    std::vector<std::uint32_t> columns_;  // of each, where zeros are left out
    std::size_t used_ = 0;
    std::size_t width_ = 0;  // with the zeros
    bool isSparse_ = false;
    std::size_t at_ = 0;
    std::size_t row_ = 0;
    std::size_t line_ = 0;
    bool ended_ = false;
};

// The separator that a first line "sep=X" names; 0 if there is none. text: UTF-8.
char hintedSeparator(std::string_view text);

}  // namespace zorvel
