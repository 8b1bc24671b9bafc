#include "tables/guess.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <unordered_set>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "tables/cells.h"
#include "tables/words.h"

namespace zorvel {
namespace {

using Rows = std::vector<TableSample::Row>;

constexpr double doubtfulLead = 0.15;

std::size_t filledCells(const TableSample::Row& row) {
    return static_cast<std::size_t>(std::count_if(row.cells.begin(), row.cells.end(),
                                                  [](const auto& c) { return !c.empty(); }));
}

// The width without empty cells at the right end.
std::size_t filledWidth(const TableSample::Row& row) {
    std::size_t width = row.cells.size();
    while (width > 0 && row.cells[width - 1].empty()) --width;
    return width;
}

std::string_view cellOf(const TableSample::Row& row, std::size_t column) {
    return column < row.cells.size() ? std::string_view(row.cells[column]) : std::string_view();
}

bool isComment(const TableSample::Row& row) {
    return !row.cells.empty() && row.cells.front().starts_with('#');
}

// The most frequent value of what is counted; the larger of equally frequent ones.
template <class Count>
std::size_t mode(const Rows& rows, const Count& count) {
    std::map<std::size_t, std::size_t> found;
    for (const auto& row : rows) ++found[count(row)];
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

// --- numbers ---

// A number with either mark, or grouped digits.
bool isNumberOfAnyForm(std::string_view cell) {
    return tableNumber(cell, {'.', 0}) || tableNumber(cell, {',', 0}) ||
           tableNumber(cell, {'.', ','}) || tableNumber(cell, {',', '.'}) ||
           tableNumber(cell, {'.', ' '});
}

// What may stand where a count is expected.
bool isCountLike(std::string_view cell) {
    return cell.empty() || isMissingMark(cell) || presenceMark(cell) || isNumberOfAnyForm(cell);
}

// --- separator ---

Rows rowsIn(std::string_view bytes, const TextForm& form) {
    TextRows rows(bytesOf(bytes), form);
    return sampleRows(rows, true).rows;
}

constexpr std::string_view separators = "\t;,|";

// Holds no other separator, unless as a mark of a number or, before a blank, of a sentence.
bool isClean(std::string_view cell, char separator) {
    for (std::size_t i = 0; i < cell.size(); ++i) {
        const bool parts =
            cell[i] != separator && separators.find(cell[i]) != std::string_view::npos;
        const bool ofSentence = i + 1 < cell.size() && cell[i + 1] == ' ';
        if (parts && !ofSentence) return isNumberOfAnyForm(cell);
    }
    return true;
}

double scoreOf(const Rows& rows, char separator) {
    Rows plain;
    for (const auto& row : rows) {
        const bool remark = isComment(row) && row.cells.size() == 1;
        if (!remark && filledCells(row) > 0) plain.push_back(row);
    }
    const std::size_t width = mode(plain, [](const auto& row) { return row.cells.size(); });
    if (width < 2) return 0;
    std::size_t same = 0;
    std::size_t near = 0;
    std::size_t cells = 0;
    std::size_t clean = 0;
    for (const auto& row : plain) {
        same += row.cells.size() == width;
        near += row.cells.size() == width || row.cells.size() + 1 == width;
        for (const auto& cell : row.cells) {
            ++cells;
            clean += isClean(cell, separator);
        }
    }
    const auto share = [](std::size_t part, std::size_t all) {
        return all == 0 ? 0 : static_cast<double>(part) / static_cast<double>(all);
    };
    return (0.7 * share(same, plain.size()) + 0.3 * share(near, plain.size())) *
           std::pow(share(clean, cells), 4) *
           std::min(1.0, 0.8 + 0.05 * static_cast<double>(width));
}

// A cell that begins with a quote and does not end with one, or has one inside, was never quoted.
bool quotesAreLetters(std::string_view head, const TextForm& form) {
    TextForm plain = form;
    plain.quotes = false;
    const Rows rows = rowsIn(head, plain);
    return std::any_of(rows.begin(), rows.end(), [](const auto& row) {
        return std::any_of(row.cells.begin(), row.cells.end(), [](const std::string& cell) {
            if (!cell.starts_with('"')) return false;
            return cell.size() < 2 || !cell.ends_with('"');
        });
    });
}

struct FormGuess {
    TextForm form;
    bool doubtful = false;
};

FormGuess guessForm(std::string_view head, bool isWhole, const TableChoices& choices) {
    FormGuess guess;
    guess.form.encoding = choices.encoding.value_or(guessEncoding(head, isWhole));
    if (choices.separator) {
        guess.form.separator = *choices.separator;
        if (guess.form.separator == '\t') {
            guess.form.quotes = !quotesAreLetters(head, guess.form);
        }
        return guess;
    }
    if (const char hinted =
            hintedSeparator(head.substr(head.starts_with("\xEF\xBB\xBF") ? 3 : 0))) {
        guess.form.separator = hinted;
        return guess;
    }
    std::array<std::pair<double, char>, 4> scores;
    for (std::size_t i = 0; i < separators.size(); ++i) {
        guess.form.separator = separators[i];
        scores[i] = {scoreOf(rowsIn(head, guess.form), separators[i]), separators[i]};
    }
    std::stable_sort(scores.begin(), scores.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    guess.form.separator = scores[0].second;
    guess.doubtful = scores[0].first - scores[1].first < doubtfulLead;
    if (scores[0].first < 0.4) {
        guess.form.separator = ' ';
        const double blanks = scoreOf(rowsIn(head, guess.form), ' ');
        if (blanks <= scores[0].first) guess.form.separator = scores[0].second;
        guess.doubtful = std::abs(blanks - scores[0].first) < doubtfulLead;
    }
    if (guess.form.separator == '\t') guess.form.quotes = !quotesAreLetters(head, guess.form);
    return guess;
}

// --- block, header and columns ---

// The rows between titles and footnotes.
struct Block {
    std::size_t first = 0;  // indices into the sample's head
    std::size_t end = 0;
    std::size_t width = 0;
};

// Two numbers alone above a table: how many species and samples it has.
bool isSizeLine(const TableSample::Row& row) {
    return filledCells(row) == 2 && filledWidth(row) == 2 && row.cells.size() >= 2 &&
           tableNumber(row.cells[0], {}) && tableNumber(row.cells[1], {});
}

Block findBlock(const Rows& rows, const TableChoices& choices) {
    Block block;
    const std::size_t filled = mode(rows, filledCells);
    block.width = mode(rows, filledWidth);
    const auto isFull = [&](const TableSample::Row& row) {
        return filledCells(row) * 10 >= filled * 6;
    };
    while (block.first < rows.size()) {
        if (choices.firstRow) {
            if (rows[block.first].number >= *choices.firstRow) break;
            ++block.first;
            continue;
        }
        const TableSample::Row& row = rows[block.first];
        const bool isHeading = isComment(row) && isFull(row) && block.first + 1 < rows.size() &&
                               !isComment(rows[block.first + 1]);
        if (isFull(row) && (!isComment(row) || isHeading) && !(filled > 2 && isSizeLine(row)))
            break;
        ++block.first;
    }
    // Cells at the right end of sparse rows are empty.
    if (block.first < rows.size())
        block.width = std::max(block.width, filledWidth(rows[block.first]));
    block.end = rows.size();
    for (std::size_t i = block.first; i < rows.size(); ++i) {
        if (filledCells(rows[i]) > 0) continue;
        const bool onlyNotes =
            std::none_of(rows.begin() + static_cast<std::ptrdiff_t>(i), rows.end(), isFull);
        if (!onlyNotes) continue;
        block.end = i;
        break;
    }
    return block;
}

// A total or an index over the rows above.
bool isSummaryRow(const TableSample::Row& row) {
    const auto filled = std::find_if(row.cells.begin(), row.cells.end(),
                                     [](const std::string& cell) { return !cell.empty(); });
    if (filled == row.cells.end()) return false;
    const auto meaning = headerMeaning(*filled);
    return meaning && meaning->role == ColumnRole::total;
}

struct Grid {
    const Rows* rows = nullptr;
    Block block;
    std::vector<bool> summaries;  // of each row of the block

    [[nodiscard]] const TableSample::Row& row(std::size_t i) const {
        return (*rows)[block.first + i];
    }
    [[nodiscard]] std::size_t height() const { return block.end - block.first; }
    [[nodiscard]] std::string_view cell(std::size_t i, std::size_t column) const {
        return cellOf(row(i), column);
    }
};

bool isSummary(const Grid& grid, std::size_t i) {
    return grid.summaries[i];
}

// The share of a column's filled cells below the header that could be counts; absent if all are
// empty.
std::optional<double> countShare(const Grid& grid, std::size_t header, std::size_t column) {
    std::size_t filled = 0;
    std::size_t counts = 0;
    for (std::size_t i = header; i < grid.height(); ++i) {
        const std::string_view cell = grid.cell(i, column);
        if (cell.empty() || isSummary(grid, i)) continue;
        ++filled;
        counts += isCountLike(cell);
    }
    if (filled == 0) return std::nullopt;
    return static_cast<double>(counts) / static_cast<double>(filled);
}

bool isCountColumn(const Grid& grid, std::size_t header, std::size_t column) {
    return countShare(grid, header, column).value_or(1) >= 0.7;
}

// Numbers that are mostly no counts: with a fraction or below zero.
bool isMeasured(const Grid& grid, std::size_t header, std::size_t column) {
    std::size_t filled = 0;
    std::size_t measured = 0;
    for (std::size_t i = header; i < grid.height(); ++i) {
        const std::string_view cell = grid.cell(i, column);
        if (cell.empty() || isSummary(grid, i)) continue;
        ++filled;
        const auto isOf = [cell](NumberMarks marks) {
            const auto kind = cellCount(cell, marks).kind;
            return kind == CellCount::Kind::fraction || kind == CellCount::Kind::negative;
        };
        const bool grouped = tableNumber(cell, {'.', ','}) && tableNumber(cell, {',', '.'});
        measured += (isOf({'.', 0}) || isOf({',', 0})) && !grouped;
    }
    return measured * 2 > filled;
}

// Counts the rows from 0 or 1.
bool holdsRowNumbers(const Grid& grid, std::size_t header, std::size_t column) {
    for (std::size_t i = header; i < grid.height(); ++i) {
        if (grid.cell(i, column).empty()) continue;
        const auto number = parseWholeInteger(grid.cell(i, column));
        const auto place = static_cast<std::int64_t>(i - header);
        if (number != place + 1 && number != place) return false;
    }
    return true;
}

// A row of words over columns of numbers.
bool isHeaderRow(const Grid& grid, std::size_t i) {
    std::size_t filled = 0;
    std::size_t words = 0;
    for (std::size_t column = 1; column < grid.row(i).cells.size(); ++column) {
        const std::string_view cell = grid.cell(i, column);
        if (cell.empty()) continue;
        ++filled;
        words += !isCountLike(cell);
    }
    const auto meaning = headerMeaning(grid.cell(i, 0));
    const bool corner = i == 0 && (grid.cell(i, 0).empty() || meaning);
    return filled > 0 && (words * 10 >= filled * 8 || corner);
}

bool hasCountsBelow(const Grid& grid, std::size_t header) {
    for (std::size_t column = 1; column < grid.block.width; ++column) {
        if (isCountColumn(grid, header, column)) return true;
    }
    return false;
}

// Of a row above species rows: what it tells of each census.
std::optional<ColumnRole> metadataOf(const Grid& grid, std::size_t i) {
    const auto meaning = headerMeaning(grid.cell(i, 0));
    if (!meaning) return std::nullopt;
    switch (meaning->role) {
        case ColumnRole::latitude:
        case ColumnRole::longitude:
        case ColumnRole::date:
        case ColumnRole::notes:
        case ColumnRole::ignored:
            return meaning->role;
        default:
            return std::nullopt;
    }
}

// Up to three rows of names, and those of metadata.
std::size_t headerHeight(const Grid& grid) {
    std::size_t height = 0;
    while (height < grid.height() &&
           (height > 0 && metadataOf(grid, height) ? height < 12
                                                   : height < 3 && isHeaderRow(grid, height))) {
        ++height;
    }
    // Words in every row: the columns are not counts, and one row is the header.
    if (height == 3 && !hasCountsBelow(grid, height)) height = 1;
    return std::min(height, grid.height());
}

bool isShort(const Grid& grid, std::size_t header) {
    if (header == 0 || grid.height() <= header) return false;
    return filledWidth(grid.row(0)) + 1 == grid.block.width &&
           filledWidth(grid.row(header)) == grid.block.width && !grid.cell(0, 0).empty();
}

// Roles by the words of the header, of each role the column of the lowest rank.
std::vector<std::optional<ColumnRole>> rolesByWords(const Grid& grid) {
    std::vector<std::optional<ColumnRole>> roles(grid.block.width);
    std::map<ColumnRole, std::pair<int, std::size_t>> best;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        const auto meaning = headerMeaning(grid.cell(0, column));
        if (!meaning) continue;
        roles[column] = ColumnRole::ignored;
        if (meaning->role == ColumnRole::ignored) continue;
        if (meaning->role == ColumnRole::total) {
            roles[column] = ColumnRole::total;
            continue;
        }
        if (meaning->role == ColumnRole::count && !isCountColumn(grid, 1, column)) continue;
        const auto found = best.find(meaning->role);
        if (found == best.end() || meaning->rank < found->second.first) {
            best[meaning->role] = {meaning->rank, column};
        }
    }
    for (const auto& [role, place] : best) roles[place.second] = role;
    return roles;
}

std::optional<std::size_t> columnOf(const std::vector<std::optional<ColumnRole>>& roles,
                                    ColumnRole role) {
    const auto found = std::find(roles.begin(), roles.end(), std::optional(role));
    if (found == roles.end()) return std::nullopt;
    return static_cast<std::size_t>(found - roles.begin());
}

// A row for each record: headers for species and census, and one for counts or hardly a number
// without a role.
bool isLong(const Grid& grid, const std::vector<std::optional<ColumnRole>>& roles) {
    if (!columnOf(roles, ColumnRole::species) || !columnOf(roles, ColumnRole::census)) return false;
    if (columnOf(roles, ColumnRole::count) || columnOf(roles, ColumnRole::status)) return true;
    std::size_t numbers = 0;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        const auto share = countShare(grid, 1, column);
        numbers += !roles[column] && share && *share >= 0.7;
    }
    return numbers < 2;
}

// --- way round ---

template <class Looks>
double shareOf(const std::vector<std::string_view>& texts, const Looks& looks) {
    if (texts.empty()) return 0;
    return static_cast<double>(std::count_if(texts.begin(), texts.end(), looks)) /
           static_cast<double>(texts.size());
}

// Positive: a row for each species.
double speciesRowsScore(const Grid& grid, std::size_t header) {
    std::vector<std::string_view> headers;
    std::vector<std::string_view> labels;
    for (std::size_t column = 1; header > 0 && column < grid.block.width; ++column) {
        if (!grid.cell(0, column).empty()) headers.push_back(grid.cell(0, column));
    }
    for (std::size_t i = header; i < grid.height(); ++i) labels.push_back(grid.cell(i, 0));
    // Rows that are only numbered are samples.
    double score = -shareOf(
        labels, [](std::string_view label) { return parseWholeInteger(label).has_value(); });
    for (std::size_t column = 0; header > 0 && column < std::min<std::size_t>(3, grid.block.width);
         ++column) {
        const auto meaning = headerMeaning(grid.cell(0, column));
        if (!meaning) continue;
        if (meaning->role == ColumnRole::species) score += 3;
        if (meaning->role == ColumnRole::census) score -= 3;
        if (meaning->role == ColumnRole::species || meaning->role == ColumnRole::census) break;
    }
    score += 2 * shareOf(labels, looksLikeSpeciesName) - 2 * shareOf(headers, looksLikeSpeciesName);
    score += shareOf(headers, looksLikeCensusName) - shareOf(labels, looksLikeCensusName);
    for (const std::string_view text : headers) {
        const auto meaning = headerMeaning(text);
        if (!meaning) continue;
        if (text == "taxonomy") score += 2;
        const bool tellsOfCensus = meaning->role == ColumnRole::latitude ||
                                   meaning->role == ColumnRole::longitude ||
                                   meaning->role == ColumnRole::date;
        if (tellsOfCensus) score -= 1.5;
    }
    for (std::size_t i = 1; i < header; ++i) {
        if (metadataOf(grid, i)) score += 1.5;
    }
    if (grid.height() - header > 3 * (grid.block.width - 1)) score += 0.3;
    return score;
}

// --- totals ---

double valueOf(std::string_view cell, NumberMarks marks) {
    return tableNumber(cell, marks).value_or(0);
}

bool agree(double a, double b) {
    return std::abs(a - b) <= 1e-9 * std::max(1.0, std::abs(b));
}

// A column after the counts, headed by a total word, whose numbers are the sums of their rows.
bool isTotalsColumn(const Grid& grid, const TableReading& reading, std::size_t total,
                    NumberMarks marks) {
    std::size_t right = 0;
    std::size_t rows = 0;
    for (std::size_t i = reading.headerRows.size(); i < grid.height(); ++i) {
        double sum = 0;
        for (std::size_t column = 0; column < grid.block.width; ++column) {
            if (column != total && reading.role(column) == ColumnRole::count) {
                sum += valueOf(grid.cell(i, column), marks);
            }
        }
        if (grid.cell(i, total).empty()) continue;
        ++rows;
        right += agree(sum, valueOf(grid.cell(i, total), marks));
    }
    return rows > 0 && right * 10 >= rows * 9;
}

// --- marks of numbers, dates, presence ---

struct MarkCounts {
    std::size_t commas = 0;  // d,d and not a group of three
    std::size_t points = 0;  // d.d likewise
    std::size_t commaGroups = 0;
    std::size_t pointGroups = 0;
    std::size_t blankGroups = 0;
    std::size_t severalGroups = 0;  // 1,234,567: nothing else
};

bool isGrouped(std::string_view cell, char mark, char decimal) {
    return (mark == ' ' || cell.find(mark) != std::string_view::npos) &&
           tableNumber(cell, {decimal, mark}).has_value() && !tableNumber(cell, {decimal, 0});
}

void countMarks(std::string_view cell, bool groupable, MarkCounts& marks) {
    const bool comma = tableNumber(cell, {',', 0}) && cell.find(',') != std::string_view::npos;
    const bool point = tableNumber(cell, {'.', 0}) && cell.find('.') != std::string_view::npos;
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
    marks.severalGroups += std::count(cell.begin(), cell.end(), ',') > 1 ||
                           std::count(cell.begin(), cell.end(), '.') > 1;
    marks.blankGroups += isGrouped(cell, ' ', '.') || isGrouped(cell, ' ', ',');
}

class Guesser {
  public:
    Guesser(const TableSample& sample, const TextForm& form, const TableChoices& choices)
        : sample_(sample), choices_(choices) {
        guess_.reading.form = form;
        guess_.reading.sheet = sample.sheet;
    }

    TableGuess guess() {
        grid_ = {&sample_.rows, findBlock(sample_.rows, choices_), {}};
        for (std::size_t i = 0; i < grid_.height(); ++i) {
            grid_.summaries.push_back(isSummaryRow(grid_.row(i)));
        }
        if (grid_.height() == 0 || grid_.block.width == 0) return guess_;
        TableReading& reading = guess_.reading;
        reading.firstRow = grid_.row(0).number;
        reading.lastRow = choices_.lastRow.value_or(0);
        const auto roles = rolesByWords(grid_);
        const bool records =
            choices_.layout ? *choices_.layout == TableLayout::records : isLong(grid_, roles);
        if (records) {
            readAsRecords(roles);
        } else {
            readAsWide();
        }
        findMarks();
        findDateOrder();
        if (reading.layout != TableLayout::records) {
            findTotals();
            findPresence();
        }
        return guess_;
    }

  private:
    void doubt(TableDoubt question) { guess_.doubts.push_back(question); }
    [[nodiscard]] NumberMarks marks() const {
        return {guess_.reading.decimalMark, guess_.reading.thousandsMark};
    }

    void readAsRecords(const std::vector<std::optional<ColumnRole>>& roles) {
        TableReading& reading = guess_.reading;
        reading.layout = TableLayout::records;
        reading.headerRows = {ColumnRole::ignored};
        for (std::size_t column = 0; column < roles.size(); ++column) {
            const ColumnRole role = roles[column].value_or(ColumnRole::ignored);
            // A remark tells of a record, of which nothing but the count is kept.
            const auto meaning = headerMeaning(grid_.cell(0, column));
            const bool remark = role == ColumnRole::notes && meaning && meaning->rank > 0;
            reading.columns.push_back(remark || role == ColumnRole::total ? ColumnRole::ignored
                                                                          : role);
        }
    }

    void readAsWide() {
        TableReading& reading = guess_.reading;
        const std::size_t header =
            std::min(choices_.headerRows.value_or(headerHeight(grid_)), grid_.height());
        reading.shortHeader = isShort(grid_, header);
        const double score = speciesRowsScore(grid_, header);
        if (!choices_.layout && std::abs(score) < 0.5) doubt(TableDoubt::layout);
        const bool speciesRows =
            choices_.layout ? *choices_.layout == TableLayout::speciesRows : score > 0;
        reading.layout = speciesRows ? TableLayout::speciesRows : TableLayout::censusRows;
        for (std::size_t i = 0; i < header; ++i) {
            const ColumnRole names = speciesRows ? ColumnRole::census : ColumnRole::species;
            const auto metadata = speciesRows && i > 0 ? metadataOf(grid_, i) : std::nullopt;
            reading.headerRows.push_back(metadata.value_or(names));
        }
        const auto roles = reading.shortHeader
                               ? std::vector<std::optional<ColumnRole>>(grid_.block.width)
                               : rolesByWords(grid_);
        const ColumnRole label = speciesRows ? ColumnRole::species : ColumnRole::census;
        const std::size_t labels = columnOf(roles, label).value_or(0);
        // Where most columns have fractions, the table holds no counts, and says so.
        std::size_t measured = 0;
        for (std::size_t column = 0; column < grid_.block.width; ++column) {
            measured += column != labels && isMeasured(grid_, header, column);
        }
        measuredAreFew_ = measured * 2 < grid_.block.width;
        for (std::size_t column = 0; column < grid_.block.width; ++column) {
            reading.columns.push_back(wideRole(column, labels, label, header, roles[column]));
        }
    }

    ColumnRole wideRole(std::size_t column, std::size_t labels, ColumnRole label,
                        std::size_t header, std::optional<ColumnRole> byWord) {
        if (column == labels) return label;
        const bool counts = isCountColumn(grid_, header, column);
        const bool ofCensus = label == ColumnRole::census;
        switch (byWord.value_or(ColumnRole::count)) {
            case ColumnRole::latitude:
                return ofCensus && fits(column, header, 90) ? *byWord : ColumnRole::ignored;
            case ColumnRole::longitude:
                return ofCensus && fits(column, header, 180) ? *byWord : ColumnRole::ignored;
            case ColumnRole::date:
            case ColumnRole::notes:
                return ofCensus ? *byWord : ColumnRole::ignored;
            case ColumnRole::total:
                return ColumnRole::total;
            default:
                break;
        }
        // A census may be called Garden or Site.
        const auto meaning = headerMeaning(grid_.cell(0, column));
        if (!ofCensus && counts && meaning && meaning->role == ColumnRole::census) {
            return ColumnRole::count;
        }
        if (byWord == ColumnRole::genus && label == ColumnRole::species) return *byWord;
        if (byWord || !counts || (measuredAreFew_ && isMeasured(grid_, header, column))) {
            return ColumnRole::ignored;
        }
        const bool numbersRows =
            header > 0 && grid_.cell(0, column).empty() && holdsRowNumbers(grid_, header, column);
        return numbersRows ? ColumnRole::ignored : ColumnRole::count;
    }

    [[nodiscard]] bool fits(std::size_t column, std::size_t header, double limit) const {
        for (std::size_t i = header; i < grid_.height(); ++i) {
            const std::string_view cell = grid_.cell(i, column);
            if (cell.empty() || isMissingMark(cell)) continue;
            if (!tableDegrees(cell, {'.', 0}, limit) && !tableDegrees(cell, {',', 0}, limit)) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool isNumeric(std::size_t column) const {
        const ColumnRole role = guess_.reading.role(column);
        return role == ColumnRole::count || role == ColumnRole::latitude ||
               role == ColumnRole::longitude || role == ColumnRole::total;
    }

    // Degrees are never grouped.
    [[nodiscard]] bool isGroupable(std::size_t column) const {
        const ColumnRole role = guess_.reading.role(column);
        return role == ColumnRole::count || role == ColumnRole::total;
    }

    void findMarks() {
        MarkCounts found;
        for (std::size_t i = 0; i < guess_.reading.headerRows.size(); ++i) {
            const ColumnRole role = guess_.reading.headerRows[i];
            if (role != ColumnRole::latitude && role != ColumnRole::longitude) continue;
            for (const std::string& cell : grid_.row(i).cells) countMarks(cell, false, found);
        }
        for (std::size_t i = guess_.reading.headerRows.size(); i < grid_.height(); ++i) {
            for (std::size_t column = 0; column < grid_.block.width; ++column) {
                if (isNumeric(column) && !isSummary(grid_, i)) {
                    countMarks(grid_.cell(i, column), isGroupable(column), found);
                }
            }
        }
        TableReading& reading = guess_.reading;
        const char separator = reading.form.separator;
        if (separator != ',' && found.commas > found.points) reading.decimalMark = ',';
        const bool point = reading.decimalMark == '.';
        if (found.blankGroups > 0) reading.thousandsMark = ' ';
        // 1,234 and 1.234 may be either: asked, unless another number gives it away.
        const std::size_t groups = point ? found.commaGroups : found.pointGroups;
        if (groups > 0) {
            reading.thousandsMark = point ? ',' : '.';
            const bool sure = found.commas > 0 || found.points > 0 || found.severalGroups > 0;
            if (!sure) doubt(TableDoubt::thousandsMark);
        }
        // A number of a workbook has no other point than that of a fraction.
        const std::size_t likeGroups = point ? found.pointGroups : found.commaGroups;
        if (groups == 0 && likeGroups > 0 && reading.sheet.empty()) {
            doubt(TableDoubt::thousandsMark);
        }
    }

    void findDateOrder() {
        TableReading& reading = guess_.reading;
        bool needed = false;
        const auto look = [&](std::string_view cell) {
            needed |= tableDate(cell, DateOrder::unknown).needsOrder;
            const DateOrder order = dateOrderOf(cell);
            if (order != DateOrder::unknown && reading.dateOrder == DateOrder::unknown) {
                reading.dateOrder = order;
            }
        };
        for (std::size_t i = 0; i < grid_.height(); ++i) {
            const bool dates =
                i < reading.headerRows.size() && reading.headerRows[i] == ColumnRole::date;
            for (std::size_t column = 0; column < grid_.block.width; ++column) {
                const bool dated =
                    i >= reading.headerRows.size() && reading.role(column) == ColumnRole::date;
                if (dates || dated) look(grid_.cell(i, column));
            }
        }
        if (needed && reading.dateOrder == DateOrder::unknown) doubt(TableDoubt::dateOrder);
    }

    void findTotals() {
        TableReading& reading = guess_.reading;
        for (std::size_t column = 0; column < reading.columns.size(); ++column) {
            if (reading.columns[column] != ColumnRole::total) continue;
            const auto meaning = headerMeaning(grid_.cell(0, column));
            if (meaning && meaning->rank > 0) {
                reading.columns[column] = ColumnRole::ignored;
            } else if (!isTotalsColumn(grid_, reading, column, marks())) {
                const bool counts = isCountColumn(grid_, reading.headerRows.size(), column);
                reading.columns[column] = counts ? ColumnRole::count : ColumnRole::ignored;
            }
        }
    }

    void findPresence() {
        TableReading& reading = guess_.reading;
        bool any = false;
        for (std::size_t i = reading.headerRows.size(); i < grid_.height(); ++i) {
            if (isSummary(grid_, i)) continue;
            for (std::size_t column = 0; column < grid_.block.width; ++column) {
                if (reading.role(column) != ColumnRole::count) continue;
                const std::string_view cell = grid_.cell(i, column);
                if (!presenceMark(cell)) return;
                any |= cell == "x" || cell == "X";
            }
        }
        reading.presence = any;
    }

    const TableSample& sample_;
    const TableChoices& choices_;
    bool measuredAreFew_ = false;
    TableGuess guess_;
    Grid grid_;
};

}  // namespace

TableEncoding guessEncoding(std::string_view bytes, bool whole) {
    if (bytes.starts_with("\xFF\xFE")) return TableEncoding::utf16LittleEndian;
    if (bytes.starts_with("\xFE\xFF")) return TableEncoding::utf16BigEndian;
    const std::string_view start = bytes.substr(0, 65536);
    std::array<std::size_t, 2> zeros{};
    for (std::size_t i = 0; i < start.size(); ++i) zeros[i % 2] += start[i] == '\0';
    const std::size_t units = start.size() / 2;
    if (units > 0 && zeros[1] * 2 >= units && zeros[0] * 16 <= zeros[1]) {
        return TableEncoding::utf16LittleEndian;
    }
    if (units > 0 && zeros[0] * 2 >= units && zeros[1] * 16 <= zeros[0]) {
        return TableEncoding::utf16BigEndian;
    }
    const auto invalid = firstInvalidUtf8(bytes);
    const bool cut = invalid && !whole && bytes.size() - *invalid < 4;
    return !invalid || cut ? TableEncoding::utf8 : TableEncoding::windows1252;
}

TableSample sampleRows(RowSource& source, bool whole) {
    TableSample sample;
    TableRow row;
    std::size_t cells = 0;
    std::size_t bytes = 0;
    while (source.next(row)) {
        cells += row.cells.size();
        for (const std::string_view cell : row.cells) bytes += cell.size();
        if (sample.rows.size() == TableSample::mostRows || cells > TableSample::mostCells ||
            bytes > 4 * TableSample::mostBytes) {
            sample.whole = false;
            return sample;
        }
        sample.rows.push_back({row.number, {row.cells.begin(), row.cells.end()}});
    }
    sample.whole = whole;
    if (!whole && sample.rows.size() > 1) sample.rows.pop_back();
    return sample;
}

TableGuess guessTable(const TableSample& sample, const TextForm& form,
                      const TableChoices& choices) {
    return Guesser(sample, form, choices).guess();
}

TableGuess guessTable(std::string_view bytes, bool whole, const TableChoices& choices) {
    const FormGuess form = guessForm(bytes, whole, choices);
    TextRows rows(bytesOf(bytes), form.form);
    TableGuess guess = guessTable(sampleRows(rows, whole), form.form, choices);
    if (form.doubtful) guess.doubts.insert(guess.doubts.begin(), TableDoubt::separator);
    return guess;
}

}  // namespace zorvel
