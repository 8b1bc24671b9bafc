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

// The roles of the columns of a wide table.
class WideRoles {
  public:
    WideRoles(const SampleGrid& grid, const TableReading& reading, const WordRoles& words)
        : grid_(grid),
          words_(words),
          header_(reading.headerRows.size()),
          label_(reading.layout == TableLayout::speciesRows ? ColumnRole::species
                                                            : ColumnRole::census),
          labels_(columnOf(words, label_).value_or(0)),
          facts_(grid.factsOf(header_)) {
        // Where most columns have fractions, the table holds no counts, and says so.
        std::size_t measured = 0;
        for (std::size_t column = 0; column < facts_.size(); ++column) {
            measured += column != labels_ && facts_[column].isMeasured();
        }
        measuredAreFew_ = measured * 2 < facts_.size();
    }

    [[nodiscard]] ColumnRole role(std::size_t column) const {
        if (column == labels_) return label_;
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
        // A census may be called Garden or Site.
        if (byWord && !ofCensus && facts.isOfCounts()) {
            const auto meaning = headerMeaning(grid_.cell(0, column));
            if (meaning && meaning->role == ColumnRole::census) return ColumnRole::count;
        }
        if (byWord == ColumnRole::genus && !ofCensus) return *byWord;
        if (byWord || !facts.isOfCounts() || (measuredAreFew_ && facts.isMeasured())) {
            return ColumnRole::ignored;
        }
        const bool numbersRows =
            header_ > 0 && grid_.cell(0, column).empty() && grid_.holdsRowNumbers(header_, column);
        return numbersRows ? ColumnRole::ignored : ColumnRole::count;
    }

  private:
    const SampleGrid& grid_;
    const WordRoles& words_;
    std::size_t header_;
    ColumnRole label_;    // of the column that names the rows
    std::size_t labels_;  // that column
    std::vector<ColumnFacts> facts_;
    bool measuredAreFew_ = false;
};

}  // namespace

WordRoles rolesByWords(const SampleGrid& grid) {
    WordRoles roles(grid.width());
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
        if (meaning->role == ColumnRole::count && !grid.factsOf(1, column).isOfCounts()) continue;
        const auto found = best.find(meaning->role);
        if (found == best.end() || meaning->rank < found->second.first) {
            best[meaning->role] = {meaning->rank, column};
        }
    }
    for (const auto& [role, place] : best) roles[place.second] = role;
    return roles;
}

bool isLong(const SampleGrid& grid, const WordRoles& roles) {
    if (!columnOf(roles, ColumnRole::species) || !columnOf(roles, ColumnRole::census)) return false;
    if (columnOf(roles, ColumnRole::count) || columnOf(roles, ColumnRole::status)) return true;
    std::size_t numbers = 0;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        if (roles[column]) continue;
        const ColumnFacts facts = grid.factsOf(1, column);
        numbers += facts.filled > 0 && facts.isOfCounts();
    }
    return numbers < 2;
}

std::vector<ColumnRole> recordRoles(const SampleGrid& grid, const WordRoles& roles) {
    std::vector<ColumnRole> found;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        const ColumnRole role = roles[column].value_or(ColumnRole::ignored);
        // A remark tells of a record, of which nothing but the count is kept.
        const auto meaning = headerMeaning(grid.cell(0, column));
        const bool remark = role == ColumnRole::notes && meaning && meaning->rank > 0;
        found.push_back(remark || role == ColumnRole::total ? ColumnRole::ignored : role);
    }
    return found;
}

std::vector<ColumnRole> wideRoles(const SampleGrid& grid, const TableReading& reading,
                                  const WordRoles& roles) {
    const WideRoles wide(grid, reading, roles);
    std::vector<ColumnRole> found;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        found.push_back(wide.role(column));
    }
    return found;
}

}  // namespace zorvel
