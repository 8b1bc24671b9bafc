#include <algorithm>

#include "base/numbers.h"
#include "tables/cells.h"
#include "tables/guess_parts.h"
#include "tables/words.h"

namespace zorvel {
namespace {

// A row of words over columns of numbers.
bool isHeaderRow(const SampleGrid& grid, std::size_t i) {
    std::size_t filled = 0;
    std::size_t words = 0;
    for (std::size_t column = 1; column < grid.row(i).cells.size(); ++column) {
        const std::string_view cell = grid.cell(i, column);
        if (cell.empty()) continue;
        ++filled;
        words += !isCountLike(cell);
    }
    const auto meaning = grid.meaning(grid.cell(i, 0));
    const bool names =
        meaning && (meaning->role == ColumnRole::species || meaning->role == ColumnRole::census);
    const bool corner =
        i == 0 ? grid.cell(0, 0).empty() || meaning : grid.cell(0, 0).empty() && names;
    return filled > 0 && (words * 10 >= filled * 8 || corner);
}

bool hasCountsBelow(const SampleGrid& grid, std::size_t header) {
    for (std::size_t column = 1; column < grid.width(); ++column) {
        const ColumnFacts facts = grid.factsOf(header, column);
        if (facts.filled > 0 && facts.isOfCounts()) return true;
    }
    return false;
}

bool hasDate(const SampleGrid& grid, std::size_t i) {
    const auto& cells = grid.row(i).cells;
    return std::any_of(cells.begin(), cells.end(), [](std::string_view cell) {
        const CellDate date = tableDate(cell, DateOrder::unknown);
        return date.time || date.needsOrder;
    });
}

template <class Looks>
double shareOf(const std::vector<std::string_view>& texts, const Looks& looks) {
    if (texts.empty()) return 0;
    return static_cast<double>(std::count_if(texts.begin(), texts.end(), looks)) /
           static_cast<double>(texts.size());
}

}  // namespace

std::optional<ColumnRole> metadataOf(const SampleGrid& grid, std::size_t i) {
    const auto meaning = grid.meaning(grid.cell(i, 0));
    if (!meaning) return std::nullopt;
    switch (meaning->role) {
        case ColumnRole::date:
            // "Date palm" is a species: below it stand counts.
            if (!hasDate(grid, i)) return std::nullopt;
            return meaning->role;
        case ColumnRole::latitude:
        case ColumnRole::longitude:
        case ColumnRole::notes:
            return meaning->role;
        case ColumnRole::stage: {
            // Ages in years tell samples apart.
            const auto& cells = grid.row(i).cells;
            const bool isAge = std::any_of(cells.begin() + 1, cells.end(), isNumberOfAnyForm);
            return isAge ? ColumnRole::ignored : meaning->role;
        }
        case ColumnRole::ignored:
            // Sand, or Area North, may be a census.
            if (meaning->rank > 1) return std::nullopt;
            return meaning->role;
        default:
            return std::nullopt;
    }
}

bool isRowOfUnits(const SampleGrid& grid, std::size_t i) {
    const auto& cells = grid.row(i).cells;
    return grid.row(i).filled > 0 &&
           std::all_of(cells.begin(), cells.end(),
                       [](std::string_view cell) { return cell.empty() || isCountUnit(cell); });
}

bool isRowOfStages(const SampleGrid& grid, std::size_t i) {
    std::size_t stages = 0;
    for (std::size_t column = 1; column < grid.width(); ++column) {
        const std::string_view cell = grid.cell(i, column);
        const bool isOne = !cell.empty() && isStage(cell);
        if (!cell.empty() && !isOne && !summaryRank(cell)) return false;
        stages += isOne;
    }
    return stages > 1;
}

// Up to three rows of names, and those of metadata.
std::size_t headerHeight(const SampleGrid& grid) {
    std::size_t height = 0;
    while (height < grid.height() &&
           (height > 0 && metadataOf(grid, height) ? height < 12
                                                   : height < 3 && isHeaderRow(grid, height))) {
        ++height;
    }
    // Words in every row: the columns are not counts, and one row is the header.
    if (height > 1 && !hasCountsBelow(grid, height)) height = 1;
    return std::min(height, grid.height());
}

bool isShort(const SampleGrid& grid, std::size_t header) {
    if (header == 0 || grid.height() <= header) return false;
    // The groups above names end before them.
    if (header > 1 && filledWidth(grid.row(1)) == grid.width() && grid.cell(1, 0).empty()) {
        return false;
    }
    // Where the last cell is there but blank, "Species" stands above the species.
    const auto meaning = grid.meaning(grid.cell(0, 0));
    const bool isNamed =
        meaning && (meaning->role == ColumnRole::species || meaning->role == ColumnRole::census);
    if (isNamed && grid.row(0).cells.size() == grid.width()) return false;
    return filledWidth(grid.row(0)) + 1 == grid.width() &&
           filledWidth(grid.row(header)) == grid.width() && !grid.cell(0, 0).empty();
}

// Whether at least half of the columns of counts are headed by words for places or species.
bool mostCountsHaveWords(const SampleGrid& grid, std::size_t header, std::size_t names) {
    std::size_t counts = 0;
    std::size_t known = 0;
    const std::vector<ColumnFacts>& facts = grid.factsOf(header);
    for (std::size_t column = names + 1; column < grid.width(); ++column) {
        if (!facts[column].isOfCounts()) continue;
        const auto meaning = grid.meaning(grid.headerText(header, column));
        ++counts;
        known += meaning &&
                 (meaning->role == ColumnRole::census || meaning->role == ColumnRole::species);
    }
    return known * 2 >= counts && known > 0;
}

// The first; but behind numbers of rows, the names.
std::size_t labelColumn(const SampleGrid& grid, std::size_t header) {
    if (grid.width() < 3 || !grid.holdsRowNumbers(header, 0)) return 0;
    const ColumnFacts facts = grid.factsOf(header, 1);
    return facts.filled > 0 && !facts.isOfCounts() ? 1 : 0;
}

double speciesRowsScore(const SampleGrid& grid, std::size_t header) {
    std::vector<std::string_view> headers;
    std::vector<std::string_view> labels;
    const std::size_t names = labelColumn(grid, header);
    for (std::size_t column = names + 1; header > 0 && column < grid.width(); ++column) {
        const auto meaning = grid.meaning(grid.headerText(header, column));
        const bool saysNothing =
            meaning && (meaning->role == ColumnRole::ignored ||
                        meaning->role == ColumnRole::stage || meaning->role == ColumnRole::total);
        if (!grid.cell(0, column).empty() && !saysNothing) headers.push_back(grid.cell(0, column));
    }
    for (std::size_t i = header; i < grid.height(); ++i) labels.push_back(grid.cell(i, names));
    // Rows that are only numbered are samples.
    double score = -shareOf(
        labels, [](std::string_view label) { return parseWholeInteger(label).has_value(); });
    const bool countsHaveWords = header > 0 && mostCountsHaveWords(grid, header, names);
    for (std::size_t column = 0; header > 0 && column < std::min<std::size_t>(3, grid.width());
         ++column) {
        const auto meaning = grid.meaning(grid.headerText(header, column));
        // The header of counts may be "Garden" or "Birds".
        if (!meaning || (column > names && countsHaveWords)) continue;
        if (meaning->role == ColumnRole::species) score += 3;
        if (meaning->role == ColumnRole::census) score -= 3;
        if (meaning->role == ColumnRole::species || meaning->role == ColumnRole::census) break;
    }
    score += 2 * shareOf(labels, looksLikeSpeciesName) - 2 * shareOf(headers, looksLikeSpeciesName);
    score += shareOf(headers, looksLikeCensusName) - shareOf(labels, looksLikeCensusName);
    for (std::size_t column = names + 1; header > 0 && column < grid.width(); ++column) {
        const auto meaning = grid.meaning(grid.cell(0, column));
        if (!meaning) continue;
        if (grid.cell(0, column) == "taxonomy") score += 2;
        const bool tellsOfCensus = meaning->role == ColumnRole::latitude ||
                                   meaning->role == ColumnRole::longitude ||
                                   meaning->role == ColumnRole::date;
        if (tellsOfCensus) score -= 1.5;
    }
    for (std::size_t i = 1; i < header; ++i) {
        if (metadataOf(grid, i)) score += 1.5;
    }
    if (grid.height() - header > 3 * (grid.width() - 1)) score += 0.3;
    return score;
}

}  // namespace zorvel
