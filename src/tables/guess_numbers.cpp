// Which columns of whole numbers in a wide table can hardly be counts, by their values alone.
#include <algorithm>
#include <cstdint>

#include "tables/cells.h"
#include "tables/guess_parts.h"
#include "tables/words.h"

namespace zorvel {
namespace {

using Numbers = std::vector<std::int64_t>;

// 14, 14, 14: an effort or an area.
bool areOneValue(const Numbers& numbers) {
    return numbers.size() >= 4 && numbers.front() > 2 &&
           std::all_of(numbers.begin(), numbers.end(),
                       [&numbers](auto number) { return number == numbers.front(); });
}

bool areYears(const Numbers& numbers) {
    return numbers.size() >= 3 && std::all_of(numbers.begin(), numbers.end(), [](auto number) {
               return number >= 1900 && number <= 2100;
           });
}

// 10, 20, 30, or 121, 135, 150: numbers of samples, depths or days.
bool rise(const Numbers& numbers) {
    bool areRegular = numbers.size() >= 5;
    for (std::size_t i = 1; i < numbers.size(); ++i) {
        if (numbers[i] <= numbers[i - 1]) return false;
        areRegular &= numbers[i] - numbers[i - 1] == numbers[1] - numbers[0];
    }
    return areRegular || (numbers.size() >= 6 && numbers.front() >= 10);
}

class NumberColumns {
  public:
    NumberColumns(const SampleGrid& grid, const TableReading& reading) : grid_(grid) {
        const std::size_t header = reading.headerRows.size();
        for (std::size_t i = header; i < grid.height(); ++i) {
            if (!grid.isSummary(i) && grid.row(i).filled > 1) rows_.push_back(i);
        }
        const bool ofSpecies = reading.layout == TableLayout::censusRows;
        for (const std::size_t column : reading.columnsOf(ColumnRole::count)) {
            const std::string_view text = grid.headerText(header, column);
            const bool isName = ofSpecies ? looksLikeSpeciesName(text) : looksLikeCensusName(text);
            Numbers numbers = isName ? Numbers() : wholeNumbers(column);
            if (areOneValue(numbers) || areYears(numbers) || rise(numbers)) {
                unlikely_.push_back(column);
                continue;
            }
            likely_.push_back(column);
            if (numbers.empty() || (!largest_.empty() && numbers[0] <= largest_[0])) continue;
            largest_ = std::move(numbers);
            largestColumn_ = column;
        }
    }

    // Empty where no other columns are left.
    std::vector<std::size_t> unlikely() {
        if (likely_.size() > 2 && areFarLarger()) {
            unlikely_.push_back(largestColumn_);
            std::erase(likely_, largestColumn_);
        }
        if (likely_.empty()) unlikely_.clear();
        std::sort(unlikely_.begin(), unlikely_.end());
        return unlikely_;
    }

  private:
    // Of a column without blanks; none where one of its cells is no whole number.
    [[nodiscard]] Numbers wholeNumbers(std::size_t column) const {
        Numbers numbers;
        for (const std::size_t i : rows_) {
            const std::string_view cell = grid_.cell(i, column);
            if (!isDigits(cell) || cell.size() > 18) return {};
            numbers.push_back(plainCount(cell));
        }
        return numbers;
    }

    // The largest numbers are of one size in all rows, and there ten times as many as anything
    // else: altitudes, coordinates.
    [[nodiscard]] bool areFarLarger() const {
        if (largest_.size() < 4) return false;
        const auto [least, most] = std::minmax_element(largest_.begin(), largest_.end());
        if (*least < 100 || *most / 5 > *least) return false;
        return std::none_of(likely_.begin(), likely_.end(), [this](std::size_t other) {
            if (other == largestColumn_) return false;
            for (std::size_t i = 0; i < rows_.size(); ++i) {
                if (plainCount(grid_.cell(rows_[i], other)) > largest_[i] / 10) return true;
            }
            return false;
        });
    }

    const SampleGrid& grid_;
    std::vector<std::size_t> rows_;  // of the grid, that say something
    std::vector<std::size_t> unlikely_;
    std::vector<std::size_t> likely_;
    Numbers largest_;  // of the column with the largest number of the first row
    std::size_t largestColumn_ = 0;
};

}  // namespace

void guessNumbers(const SampleGrid& grid, TableGuess& guess) {
    if (guess.reading.headerRows.empty()) return;
    guess.unlikely = NumberColumns(grid, guess.reading).unlikely();
    if (guess.unlikely.empty()) return;
    guess.doubts.push_back(TableDoubt::numbers);
    for (const std::size_t column : guess.unlikely) {
        guess.reading.columns[column] = ColumnRole::ignored;
    }
}

}  // namespace zorvel
