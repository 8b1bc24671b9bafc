#include "tables/sample_grid.h"

#include <algorithm>
#include <cstdint>
#include <map>

#include "base/numbers.h"
#include "tables/cells.h"
#include "tables/words.h"

namespace zorvel {
namespace {

// The most frequent number of cells of a row; the larger of equally frequent ones. Rows of one cell
// are titles and headings: they count only where no row has more.
std::size_t mode(const std::vector<std::size_t>& counts) {
    std::map<std::size_t, std::size_t> found;
    for (const std::size_t count : counts) ++found[count];
    if (!found.empty() && found.rbegin()->first > 1) found.erase(1);
    std::size_t best = 0;
    std::size_t times = 0;
    for (const auto& [value, number] : found) {
        if (value > 0 && number >= times) {
            best = value;
            times = number;
        }
    }
    return best;
}

// Two numbers alone above a table: how many species and samples it has.
bool isSizeLine(const SampleRow& row) {
    return row.filled == 2 && filledWidth(row) == 2 && tableNumber(row.cells[0], {}) &&
           tableNumber(row.cells[1], {});
}

bool isSummaryRow(const SampleRow& row) {
    const auto filled =
        std::find_if(row.cells.begin(), row.cells.end(), [](auto cell) { return !cell.empty(); });
    return filled != row.cells.end() && summaryRank(*filled).has_value();
}

bool isFractionOrNegative(std::string_view cell) {
    const std::string_view decimals = decimalsOf(cell);
    if (!decimals.empty() && decimals.size() != 3) {
        return decimals.find_first_not_of('0') != std::string_view::npos;
    }
    const auto isOf = [cell](NumberMarks marks) {
        const auto kind = cellCount(cell, marks).kind;
        return kind == CellCount::Kind::fraction || kind == CellCount::Kind::negative;
    };
    return hasDigit(cell) && (isOf({'.', 0}) || isOf({',', 0})) &&
           !(tableNumber(cell, {'.', ','}) && tableNumber(cell, {',', '.'}));
}

void addFact(ColumnFacts& facts, std::string_view cell) {
    if (cell.empty()) return;
    ++facts.filled;
    if (isDigits(cell)) {
        ++facts.digits;
        ++facts.counts;
        return;
    }
    facts.counts += isCountLike(cell);
    facts.measured += isFractionOrNegative(cell);
}

// Site A, blank, Site B, blank: each above a filled cell, and none above the names.
bool isRowOfGroups(const SampleRow& row, const SampleRow& below) {
    if (row.cells.empty() || !row.cells.front().empty() || row.filled < 2) return false;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        if (row.cells[i].empty()) continue;
        if (i >= below.cells.size() || below.cells[i].empty()) return false;
        if (isNumberOfAnyForm(row.cells[i])) return false;
    }
    return true;
}

}  // namespace

std::size_t filledWidth(const SampleRow& row) {
    std::size_t width = row.cells.size();
    while (width > 0 && row.cells[width - 1].empty()) --width;
    return width;
}

bool isComment(const SampleRow& row) {
    return !row.cells.empty() && row.cells.front().starts_with('#');
}

bool isDigits(std::string_view cell) {
    for (const char c : cell) {
        if (c < '0' || c > '9') return false;
    }
    return !cell.empty();
}

std::string_view decimalsOf(std::string_view cell) {
    constexpr std::size_t longest = 15;
    std::size_t mark = 0;
    while (mark < cell.size() && cell[mark] >= '0' && cell[mark] <= '9') ++mark;
    const bool isOne = mark > 0 && mark < cell.size() && (cell[mark] == '.' || cell[mark] == ',');
    if (!isOne || cell.size() > longest) return {};
    const std::string_view decimals = cell.substr(mark + 1);
    return isDigits(decimals) ? decimals : std::string_view();
}

bool hasDigit(std::string_view cell) {
    return cell.find_first_of("0123456789") != std::string_view::npos;
}

bool isNumberOfAnyForm(std::string_view cell) {
    if (isDigits(cell) || !decimalsOf(cell).empty()) return true;
    constexpr std::string_view all = "0123456789.,+-eE '\u2019\u00A0\u202F";
    if (cell.find_first_not_of(all) != std::string_view::npos) return false;
    return tableNumber(cell, {'.', 0}) || tableNumber(cell, {',', 0}) ||
           tableNumber(cell, {'.', ','}) || tableNumber(cell, {',', '.'}) ||
           tableNumber(cell, {'.', ' '}) || tableNumber(cell, {'.', '\''});
}

bool isCountLike(std::string_view cell) {
    return presenceMark(cell) || isNumberOfAnyForm(cell) || isMissingMark(cell) ||
           isAbundanceMark(cell) || isFormula(cell) || isErrorValue(cell);
}

Block findBlock(const SampleRows& rows, const TableChoices& choices) {
    Block block;
    std::vector<std::size_t> filledOf;
    std::vector<std::size_t> widths;
    for (const SampleRow& row : rows) {
        filledOf.push_back(row.filled);
        widths.push_back(filledWidth(row));
    }
    const std::size_t filled = mode(filledOf);
    block.width = mode(widths);
    const auto isFull = [&](std::size_t i) { return filledOf[i] * 10 >= filled * 6; };
    for (; block.first < rows.size(); ++block.first) {
        const std::size_t i = block.first;
        if (choices.firstRow) {
            if (rows[i].number >= *choices.firstRow) break;
            continue;
        }
        const bool isHeading =
            isComment(rows[i]) && isFull(i) && i + 1 < rows.size() && !isComment(rows[i + 1]);
        const bool isRow = isFull(i) && (!isComment(rows[i]) || isHeading);
        if (isRow && !(filled > 2 && isSizeLine(rows[i]))) break;
    }
    // Groups of columns stand in a sparse row above the header.
    const bool hasGroups = block.first > 0 && block.first < rows.size() && !choices.firstRow &&
                           isRowOfGroups(rows[block.first - 1], rows[block.first]);
    if (hasGroups) --block.first;
    // Cells at the right end of sparse rows are empty.
    if (block.first < rows.size()) block.width = std::max(block.width, widths[block.first]);
    // Only notes follow the first empty row below the last full one.
    std::size_t full = rows.size();
    while (full > block.first && !isFull(full - 1)) --full;
    block.end = full;
    while (block.end < rows.size() && filledOf[block.end] > 0) ++block.end;
    return block;
}

SampleGrid::SampleGrid(const SampleRows& rows, const Block& block) : rows_(&rows), block_(block) {
    for (std::size_t i = 0; i < height(); ++i) summaries_.push_back(isSummaryRow(row(i)));
}

std::optional<HeaderMeaning> SampleGrid::meaning(std::string_view cell) const {
    if (cell.empty()) return headerMeaning(cell);
    const auto [found, isNew] = meanings_.try_emplace(cell.data());
    if (isNew) found->second = headerMeaning(cell);
    return found->second;
}

ColumnFacts SampleGrid::factsOf(std::size_t header, std::size_t column) const {
    ColumnFacts facts;
    for (std::size_t i = header; i < height(); ++i) {
        if (!isSummary(i)) addFact(facts, cell(i, column));
    }
    return facts;
}

const std::vector<ColumnFacts>& SampleGrid::factsOf(std::size_t header) const {
    const auto [found, isNew] = facts_.try_emplace(header, width());
    std::vector<ColumnFacts>& facts = found->second;
    for (std::size_t i = header; isNew && i < height(); ++i) {
        if (isSummary(i)) continue;
        const auto& cells = row(i).cells;
        const std::size_t end = std::min(width(), cells.size());
        for (std::size_t column = 0; column < end; ++column) addFact(facts[column], cells[column]);
    }
    return facts;
}

bool SampleGrid::holdsRowNumbers(std::size_t header, std::size_t column) const {
    std::optional<std::int64_t> last;
    std::size_t filled = 0;
    std::size_t next = 0;  // numbers by 1 above the last
    for (std::size_t i = header; i < height(); ++i) {
        if (cell(i, column).empty() || isSummary(i)) continue;
        const auto number = parseWholeInteger(cell(i, column));
        if (!number) return false;
        const bool begins = *number == 0 || *number == 1;
        if (last && *number == *last + 1) {
            ++next;
        } else if (!begins) {
            return false;
        }
        last = number;
        ++filled;
    }
    constexpr std::size_t sure = 6;  // fewer may be counts, unless they stand first
    if (column > 0 && filled < sure) return false;
    return filled < 2 || next * 10 >= (filled - 1) * 7;
}

}  // namespace zorvel
