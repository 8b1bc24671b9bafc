// The first rows of a table as the guess looks at them: its block without titles and footnotes, and
// what its columns hold. Parts of guess.h. Pure.
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tables/guess.h"
#include "tables/words.h"

namespace zorvel {

struct SampleRow {
    std::size_t number = 0;
    std::vector<std::string_view> cells;
    std::unique_ptr<char[]> text;  // of the cells, unless it is elsewhere
    std::size_t filled = 0;        // the number of cells that are not empty
};
using SampleRows = std::vector<SampleRow>;

template <class Cells>
std::size_t filledCells(const Cells& cells) {
    return static_cast<std::size_t>(
        std::count_if(cells.begin(), cells.end(), [](const auto& cell) { return !cell.empty(); }));
}
// The width without empty cells at the right end.
std::size_t filledWidth(const SampleRow& row);
bool isComment(const SampleRow& row);

// A number with either mark, or grouped digits.
bool isNumberOfAnyForm(std::string_view cell);
bool isDigits(std::string_view cell);
// Of digits around one mark, as nearly all fractions are written, those behind it: "50" of "12,50".
// If they are three, the mark may be that of thousands. Empty for other and for long cells.
std::string_view decimalsOf(std::string_view cell);
bool hasDigit(std::string_view cell);
// May stand where a count is expected, rightly or as a problem.
bool isCountLike(std::string_view cell);

// The rows between titles and footnotes.
struct Block {
    std::size_t first = 0;  // indices into the sample's head
    std::size_t end = 0;
    std::size_t width = 0;
};
Block findBlock(const SampleRows& rows, const TableChoices& choices);

// What the cells of a column hold, from a row on.
struct ColumnFacts {
    std::size_t filled = 0;
    std::size_t digits = 0;    // nothing else
    std::size_t counts = 0;    // that may stand where a count is expected
    std::size_t measured = 0;  // numbers that are no counts: with a fraction or below zero

    // A column without any is one too. Of a few cells, most are enough: one may be at fault.
    [[nodiscard]] bool isOfCounts() const {
        return counts * 10 >= filled * 7 || (filled <= 6 && counts * 2 > filled);
    }
    [[nodiscard]] bool isMeasured() const { return measured * 2 > filled; }
};

class SampleGrid {
  public:
    SampleGrid() = default;
    SampleGrid(const SampleRows& rows, const Block& block);

    [[nodiscard]] const SampleRow& row(std::size_t i) const { return (*rows_)[block_.first + i]; }
    [[nodiscard]] std::size_t height() const { return block_.end - block_.first; }
    [[nodiscard]] std::size_t width() const { return block_.width; }
    [[nodiscard]] std::string_view cell(std::size_t i, std::size_t column) const {
        const auto& cells = row(i).cells;
        return column < cells.size() ? cells[column] : std::string_view();
    }
    // The first text of the header rows above a column.
    [[nodiscard]] std::string_view headerText(std::size_t header, std::size_t column) const {
        for (std::size_t i = 0; i + 1 < header; ++i) {
            if (!cell(i, column).empty()) return cell(i, column);
        }
        return cell(header > 0 ? header - 1 : 0, column);
    }
    // What a cell of the grid says as a header; found out once for each.
    [[nodiscard]] std::optional<HeaderMeaning> meaning(std::string_view cell) const;
    // A total or an index over the rows above.
    [[nodiscard]] bool isSummary(std::size_t i) const { return summaries_[i]; }

    // Of one column, or of all of them, below the header rows.
    [[nodiscard]] ColumnFacts factsOf(std::size_t header, std::size_t column) const;
    [[nodiscard]] const std::vector<ColumnFacts>& factsOf(std::size_t header) const;
    // Counts the rows from 0 or 1, perhaps anew in each group of them.
    [[nodiscard]] bool holdsRowNumbers(std::size_t header, std::size_t column) const;

  private:
    const SampleRows* rows_ = nullptr;
    Block block_;
    std::vector<bool> summaries_;                                    // of each row of the block
    mutable std::map<std::size_t, std::vector<ColumnFacts>> facts_;  // below so many header rows
    mutable std::unordered_map<const char*, std::optional<HeaderMeaning>> meanings_;  // of cells
};

}  // namespace zorvel
