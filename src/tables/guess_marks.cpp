#include <algorithm>
#include <cmath>
#include <numeric>

#include "tables/cells.h"
#include "tables/guess_parts.h"
#include "tables/words.h"

namespace zorvel {
namespace {

double valueOf(std::string_view cell, NumberMarks marks) {
    return tableNumber(cell, marks).value_or(0);
}

// How well a column or row holds the sums of others.
struct SumCheck {
    std::size_t sums = 0;
    std::size_t right = 0;
    std::size_t telling = 0;  // of them, those of several numbers

    void add(const std::vector<double>& numbers, double sum) {
        const double whole = std::accumulate(numbers.begin(), numbers.end(), 0.0);
        const bool isRight = std::abs(whole - sum) <= 1e-9 * std::max(1.0, std::abs(sum));
        const auto zeros = std::count(numbers.begin(), numbers.end(), 0.0);
        ++sums;
        right += isRight;
        telling += isRight && static_cast<std::size_t>(zeros) + 1 < numbers.size();
    }
    // Without a word for it.
    [[nodiscard]] bool isSure() const { return sums > 2 && right == sums && telling > 1; }
};

// Of a column. Rows with a cell that is no number say nothing.
SumCheck checkColumn(const SampleGrid& grid, const TableReading& reading, std::size_t total) {
    const NumberMarks marks{reading.decimalMark, reading.thousandsMark};
    const std::vector<std::size_t> counts = reading.columnsOf(ColumnRole::count);
    SumCheck check;
    for (std::size_t i = reading.headerRows.size(); i < grid.height(); ++i) {
        std::vector<double> numbers;
        bool isClean = !grid.cell(i, total).empty();
        for (const std::size_t column : counts) {
            if (column == total) continue;
            const std::string_view cell = grid.cell(i, column);
            numbers.push_back(valueOf(cell, marks));
            isClean &= cell.empty() || isNumberOfAnyForm(cell);
        }
        if (isClean) check.add(numbers, valueOf(grid.cell(i, total), marks));
        // More than a tenth of all rows are wrong: no total, with or without a word.
        if ((check.sums - check.right) * 10 > grid.height()) break;
    }
    return check;
}

// Of the last row.
SumCheck checkLastRow(const SampleGrid& grid, const TableReading& reading) {
    const NumberMarks marks{reading.decimalMark, reading.thousandsMark};
    SumCheck check;
    for (const std::size_t column : reading.columnsOf(ColumnRole::count)) {
        std::vector<double> numbers;
        for (std::size_t i = reading.headerRows.size(); i + 1 < grid.height(); ++i) {
            numbers.push_back(valueOf(grid.cell(i, column), marks));
        }
        check.add(numbers, valueOf(grid.cell(grid.height() - 1, column), marks));
        if (check.right < check.sums) break;
    }
    return check;
}

bool looksLikeName(std::string_view text) {
    return looksLikeSpeciesName(text) || looksLikeCensusName(text);
}

// Sums whose words are not known: in the last column and the last row.
void findTotals(const SampleGrid& grid, TableReading& reading, bool isWhole) {
    const std::size_t header = reading.headerRows.size();
    const std::vector<std::size_t> counts = reading.columnsOf(ColumnRole::count);
    if (header == 0 || counts.size() < 3 || grid.height() < header + 2) return;
    const std::size_t lastRow = grid.height() - 1;
    const auto label = std::find_if(grid.row(lastRow).cells.begin(), grid.row(lastRow).cells.end(),
                                    [](std::string_view cell) { return !cell.empty(); });
    const bool mayEnd = isWhole && lastRow > header + 1 && !grid.isSummary(lastRow) &&
                        label != grid.row(lastRow).cells.end() && !looksLikeName(*label) &&
                        !isDigits(*label);
    if (mayEnd && checkLastRow(grid, reading).isSure()) {
        reading.totalsRow = grid.row(lastRow).number;
    }
    const std::size_t last = counts.back();
    const bool isNamed = looksLikeName(grid.headerText(header, last));
    if (!isNamed && checkColumn(grid, reading, last).isSure()) {
        reading.columns[last] = ColumnRole::total;
    }
}

struct MarkCounts {
    std::size_t commas = 0;  // d,d and not a group of three
    std::size_t points = 0;  // d.d likewise
    std::size_t commaGroups = 0;
    std::size_t pointGroups = 0;
    std::size_t blankGroups = 0;
    std::size_t quoteGroups = 0;    // 1'234
    std::size_t severalGroups = 0;  // 1,234,567: nothing else
};

bool isGrouped(std::string_view cell, char mark, char decimal) {
    const bool hasForms = mark == ' ' || mark == '\'';  // others of several bytes
    return (hasForms || cell.find(mark) != std::string_view::npos) &&
           tableNumber(cell, {decimal, mark}).has_value() && !tableNumber(cell, {decimal, 0});
}

void countMarks(std::string_view cell, bool groupable, MarkCounts& marks) {
    if (cell.empty() || isDigits(cell)) return;
    const std::string_view decimals = decimalsOf(cell);
    if (!decimals.empty() && decimals.size() != 3) {
        ++(cell[cell.size() - decimals.size() - 1] == ',' ? marks.commas : marks.points);
        return;
    }
    marks.severalGroups += std::count(cell.begin(), cell.end(), ',') > 1 ||
                           std::count(cell.begin(), cell.end(), '.') > 1;
    if (!hasDigit(cell)) return;
    const bool comma = cell.find(',') != std::string_view::npos && tableNumber(cell, {',', 0});
    const bool point = cell.find('.') != std::string_view::npos && tableNumber(cell, {'.', 0});
    if (groupable && isGrouped(cell, ',', '.')) {
        ++marks.commaGroups;
    } else if (comma) {
        ++marks.commas;
    }
    if (groupable && isGrouped(cell, '.', ',')) {
        ++marks.pointGroups;
    } else if (point) {
        ++marks.points;
    }
    if (comma || point) return;  // there is no other mark
    marks.quoteGroups += isGrouped(cell, '\'', '.') || isGrouped(cell, '\'', ',');
    marks.blankGroups += isGrouped(cell, ' ', '.') || isGrouped(cell, ' ', ',');
}

// Degrees are never grouped.
bool isGroupable(ColumnRole role) {
    return role == ColumnRole::count || role == ColumnRole::total;
}

bool isNumeric(ColumnRole role) {
    return isGroupable(role) || role == ColumnRole::latitude || role == ColumnRole::longitude;
}

}  // namespace

void guessMarks(const SampleGrid& grid, TableGuess& guess) {
    TableReading& reading = guess.reading;
    MarkCounts found;
    for (std::size_t i = 0; i < reading.headerRows.size(); ++i) {
        const ColumnRole role = reading.headerRows[i];
        if (role != ColumnRole::latitude && role != ColumnRole::longitude) continue;
        for (const std::string_view cell : grid.row(i).cells) countMarks(cell, false, found);
    }
    const std::vector<ColumnFacts>& facts = grid.factsOf(reading.headerRows.size());
    std::vector<std::size_t> columns;
    for (std::size_t column = 0; column < grid.width(); ++column) {
        const bool mayHave = facts[column].digits < facts[column].filled;
        if (mayHave && isNumeric(reading.role(column))) columns.push_back(column);
    }
    for (std::size_t i = reading.headerRows.size(); i < grid.height(); ++i) {
        for (const std::size_t column : columns) {
            if (grid.isSummary(i)) break;
            countMarks(grid.cell(i, column), isGroupable(reading.columns[column]), found);
        }
    }
    const char separator = reading.form.separator;
    if (separator != ',' && found.commas > found.points) reading.decimalMark = ',';
    const bool point = reading.decimalMark == '.';
    if (found.blankGroups > 0) reading.thousandsMark = ' ';
    if (found.quoteGroups > 0) reading.thousandsMark = '\'';
    // 1,234 and 1.234 may be either: asked, unless another number gives it away.
    const std::size_t groups = point ? found.commaGroups : found.pointGroups;
    if (groups > 0) {
        reading.thousandsMark = point ? ',' : '.';
        const bool sure = found.commas > 0 || found.points > 0 || found.severalGroups > 0;
        if (!sure) guess.doubts.push_back(TableDoubt::thousandsMark);
    }
    // A number of a workbook has no other point than that of a fraction.
    const std::size_t likeGroups = point ? found.pointGroups : found.commaGroups;
    if (groups == 0 && likeGroups > 0 && reading.sheet.empty()) {
        guess.doubts.push_back(TableDoubt::thousandsMark);
    }
}

void guessDateOrder(const SampleGrid& grid, TableGuess& guess) {
    TableReading& reading = guess.reading;
    bool needed = false;
    const auto look = [&](std::string_view cell) {
        needed |= tableDate(cell, DateOrder::unknown).needsOrder;
        const DateOrder order = dateOrderOf(cell);
        if (order != DateOrder::unknown && reading.dateOrder == DateOrder::unknown) {
            reading.dateOrder = order;
        }
    };
    const std::size_t header = reading.headerRows.size();
    for (std::size_t i = 0; i < header; ++i) {
        if (reading.headerRows[i] != ColumnRole::date) continue;
        for (std::size_t column = 0; column < grid.width(); ++column) look(grid.cell(i, column));
    }
    const std::vector<std::size_t> dates = reading.columnsOf(ColumnRole::date);
    for (std::size_t i = header; i < grid.height(); ++i) {
        for (const std::size_t column : dates) look(grid.cell(i, column));
    }
    if (needed && reading.dateOrder == DateOrder::unknown)
        guess.doubts.push_back(TableDoubt::dateOrder);
}

void settleTotals(const SampleGrid& grid, TableReading& reading, bool isWhole) {
    for (std::size_t column = 0; column < reading.columns.size(); ++column) {
        if (reading.columns[column] != ColumnRole::total) continue;
        const auto meaning = grid.meaning(grid.headerText(reading.headerRows.size(), column));
        const auto& columns = reading.columns;
        const bool isOnly =
            std::find(columns.begin(), columns.end(), ColumnRole::count) == columns.end() &&
            grid.factsOf(reading.headerRows.size(), column).isOfCounts();
        const SumCheck check = checkColumn(grid, reading, column);
        const bool sums = meaning && meaning->rank == 0 && check.right * 10 >= check.sums * 9;
        if (isOnly) {
            reading.columns[column] = ColumnRole::count;
        } else if (!sums) {
            reading.columns[column] = ColumnRole::ignored;
        }
    }
    findTotals(grid, reading, isWhole);
}

bool isPresenceTable(const SampleGrid& grid, const TableReading& reading) {
    bool any = false;
    for (std::size_t i = reading.headerRows.size(); i < grid.height(); ++i) {
        if (grid.isSummary(i)) continue;
        for (std::size_t column = 0; column < grid.width(); ++column) {
            if (reading.role(column) != ColumnRole::count) continue;
            const std::string_view cell = grid.cell(i, column);
            if (!presenceMark(cell)) return false;
            any |= !cell.empty() && !isDigits(cell);
        }
    }
    return any;
}

}  // namespace zorvel
