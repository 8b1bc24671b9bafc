#include <algorithm>
#include <map>
#include <utility>

#include "tables/cells.h"
#include "tables/guess_parts.h"
#include "tables/words.h"

namespace zorvel {
namespace {

std::optional<std::size_t> columnOf(const WordRoles& roles, ColumnRole role) {
    const auto found = std::find(roles.begin(), roles.end(), std::optional(role));
    if (found == roles.end()) return std::nullopt;
    return static_cast<std::size_t>(found - roles.begin());
}

bool fitsDegrees(const SampleGrid& grid, std::size_t header, std::size_t column, double limit) {
    for (std::size_t i = header; i < grid.height(); ++i) {
        const std::string_view cell = grid.cell(i, column);
        if (cell.empty() || isMissingMark(cell)) continue;
        if (!tableDegrees(cell, {'.', 0}, limit) && !tableDegrees(cell, {',', 0}, limit)) {
            return false;
        }
    }
    return true;
}

// Below a header that does not say so.
bool holdsDates(const SampleGrid& grid, std::size_t column) {
    std::size_t filled = 0;
    std::size_t dates = 0;
    for (std::size_t i = 1; i < grid.height(); ++i) {
        const std::string_view cell = grid.cell(i, column);
        if (cell.empty() || isMissingMark(cell)) continue;
        ++filled;
        const CellDate date = tableDate(cell, DateOrder::unknown);
        dates += !isDigits(cell) && (date.time || date.needsOrder);
        if (filled == 10 && dates == 0) return false;
    }
    return filled > 0 && dates * 10 >= filled * 8;
}

// Whatever the header says.
bool holdsStages(const SampleGrid& grid, std::size_t header, std::size_t column) {
    std::size_t stages = 0;
    for (std::size_t i = header; i < grid.height(); ++i) {
        const std::string_view cell = grid.cell(i, column);
        if (cell.empty() || isMissingMark(cell) || grid.isSummary(i)) continue;
        if (!isStage(cell)) return false;
        ++stages;
    }
    return stages > 0;
}

// The roles of the columns of a wide table.
class WideRoles {
  public:
    WideRoles(const SampleGrid& grid, const TableReading& reading, const WordRoles& words)
        : grid_(grid),
          words_(words),
          header_(reading.headerRows.size()),
          label_(reading.layout == TableLayout::speciesRows ? ColumnRole::species
                                                            : ColumnRole::census),
          labels_(labelColumns(grid, header_, label_, words)),
          facts_(grid.factsOf(header_)) {
        // Where most columns have fractions, the table holds no counts, and says so.
        std::size_t measured = 0;
        for (std::size_t column = 0; column < facts_.size(); ++column) {
            measured += !isLabel(column) && facts_[column].isMeasured();
        }
        measuredAreFew_ = measured * 2 < facts_.size();
    }

    [[nodiscard]] ColumnRole role(std::size_t column) const {
        if (isLabel(column)) return label_;
        const ColumnFacts& facts = facts_[column];
        const auto byWord = words_[column];
        const bool ofCensus = label_ == ColumnRole::census;
        switch (byWord.value_or(ColumnRole::count)) {
            case ColumnRole::latitude:
                return ofCensus && fitsDegrees(grid_, header_, column, 90) ? *byWord
                                                                           : ColumnRole::ignored;
            case ColumnRole::longitude:
                return ofCensus && fitsDegrees(grid_, header_, column, 180) ? *byWord
                                                                            : ColumnRole::ignored;
            case ColumnRole::date:
            case ColumnRole::notes:
                return ofCensus ? *byWord : ColumnRole::ignored;
            case ColumnRole::total:
                return ColumnRole::total;
            default:
                break;
        }
        // The header of counts may be "Garden" or "Site", the name of a census, or "Birds", what is
        // counted.
        if (byWord && facts.filled > 0 && facts.isOfCounts()) {
            const auto meaning = grid_.meaning(grid_.headerText(header_, column));
            const bool names =
                meaning && (ofCensus ? meaning->role == ColumnRole::species && meaning->rank == 1
                                     : meaning->role == ColumnRole::census || meaning->rank > 1);
            if (names) return ColumnRole::count;
        }
        if (byWord == ColumnRole::genus && !ofCensus) return *byWord;
        if (byWord || !facts.isOfCounts()) return ColumnRole::ignored;
        // Measurements below the name of a species are problems; the column is not left out.
        const bool ofSpecies =
            ofCensus && header_ > 0 && looksLikeSpeciesName(grid_.cell(0, column));
        if (measuredAreFew_ && facts.isMeasured() && !ofSpecies) return ColumnRole::ignored;
        const bool mayNumber =
            column == 0 || (header_ > 0 && grid_.headerText(header_, column).empty());
        return mayNumber && grid_.holdsRowNumbers(header_, column) ? ColumnRole::ignored
                                                                   : ColumnRole::count;
    }

  private:
    static std::vector<std::size_t> labelColumns(const SampleGrid& grid, std::size_t header,
                                                 ColumnRole label, const WordRoles& words) {
        std::vector<std::size_t> names;
        if (label == ColumnRole::census) names = nameColumns(grid, header, words);
        const auto species = columnOf(words, ColumnRole::species);
        if (label == ColumnRole::species && species) names = {*species};
        if (names.empty()) names = {labelColumn(grid, header)};
        return names;
    }
    [[nodiscard]] bool isLabel(std::size_t column) const {
        return std::find(labels_.begin(), labels_.end(), column) != labels_.end();
    }

    const SampleGrid& grid_;
    const WordRoles& words_;
    std::size_t header_;
    ColumnRole label_;                 // of the columns that name the rows
    std::vector<std::size_t> labels_;  // those columns
    std::vector<ColumnFacts> facts_;
    bool measuredAreFew_ = false;
};

}  // namespace

WordRoles rolesByWords(const SampleGrid& grid, std::size_t header) {
    WordRoles roles(grid.width());
    std::map<ColumnRole, std::pair<int, std::size_t>> best;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        const auto meaning = grid.meaning(grid.headerText(header, column));
        if (!meaning) continue;
        roles[column] = ColumnRole::ignored;
        if (meaning->role == ColumnRole::ignored) continue;
        const std::size_t below = std::max<std::size_t>(header, 1);
        if (meaning->role == ColumnRole::total || meaning->role == ColumnRole::stage) {
            // Ages in years tell samples apart.
            const bool isAge =
                meaning->role == ColumnRole::stage && grid.factsOf(below, column).counts > 0;
            if (!isAge) roles[column] = meaning->role;
            continue;
        }
        const bool isNoCount =
            meaning->role == ColumnRole::count &&
            (!grid.factsOf(below, column).isOfCounts() ||
             (meaning->rank > 0 && grid.holdsRowNumbers(below, column)));  // "Tree no."
        if (isNoCount) continue;
        const bool isUnsureDate = meaning->role == ColumnRole::date && meaning->rank > 1;
        if (isUnsureDate && !holdsDates(grid, column)) continue;
        const auto found = best.find(meaning->role);
        if (found == best.end() || meaning->rank < found->second.first) {
            best[meaning->role] = {meaning->rank, column};
        }
    }
    // A genus belongs to the name only where the species is an epithet, not one of many reads or
    // taxa.
    const auto species = best.find(ColumnRole::species);
    if (species != best.end() && species->second.first != 0) best.erase(ColumnRole::genus);
    for (const auto& [role, place] : best) roles[place.second] = role;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        if (!roles[column] && holdsStages(grid, header, column)) roles[column] = ColumnRole::stage;
    }
    for (std::size_t column = 0; column < roles.size() && !best.contains(ColumnRole::date);
         ++column) {
        if (roles[column] || !holdsDates(grid, column)) continue;
        roles[column] = ColumnRole::date;
        break;
    }
    return roles;
}

std::vector<ColumnRole> wideRoles(const SampleGrid& grid, const TableReading& reading,
                                  const WordRoles& roles) {
    const WideRoles wide(grid, reading, roles);
    std::vector<ColumnRole> found;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        found.push_back(wide.role(column));
    }
    // One census: Species, Count.
    const bool counted = std::find(found.begin(), found.end(), ColumnRole::count) != found.end();
    const auto count = columnOf(roles, ColumnRole::count);
    if (!counted && count && reading.layout == TableLayout::speciesRows) {
        found[*count] = ColumnRole::count;
    }
    return found;
}

}  // namespace zorvel
