// Which rows and columns of a wide table tell sexes or stages apart.
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tables/guess_parts.h"
#include "tables/row_reader.h"
#include "tables/stage_names.h"
#include "tables/words.h"

namespace zorvel {
namespace {

// Totals among the stages are no species and no census.
void ignoreTotals(const SampleGrid& grid, std::size_t row, std::vector<ColumnRole>& columns) {
    for (std::size_t column = 0; column < columns.size(); ++column) {
        const bool isTaken =
            columns[column] == ColumnRole::count || columns[column] == ColumnRole::total;
        if (isTaken && summaryRank(grid.cell(row, column))) columns[column] = ColumnRole::ignored;
    }
}

// Rows that say nothing else of their census.
class StageRows {
  public:
    StageRows(const SampleGrid& grid, const TableReading& reading,
              const std::vector<std::size_t>& stages) {
        std::set<std::string> censuses;
        std::set<std::string> parts;
        std::vector<std::string_view> above(grid.width());
        for (std::size_t i = reading.headerRows.size(); i < grid.height(); ++i) {
            if (grid.isSummary(i) || grid.row(i).filled == 0) continue;
            std::string key;
            for (std::size_t column = 0; column < grid.width(); ++column) {
                const ColumnRole role = reading.role(column);
                const bool isKey = role != ColumnRole::count && role != ColumnRole::ignored &&
                                   role != ColumnRole::total && role != ColumnRole::notes;
                // Of merged names the first cell has the text.
                const bool isMerged = role == ColumnRole::census && grid.cell(i, column).empty();
                if (!isMerged) above[column] = grid.cell(i, column);
                if (isKey) key.append(above[column]).append(1, '\n');
            }
            areSeveral |= !censuses.insert(key).second;
            for (const std::size_t column : stages) {
                key.append(grid.cell(i, column)).append(1, '\n');
            }
            repeat |= !parts.insert(key).second;
        }
    }

    bool areSeveral = false;  // of one census
    bool repeat = false;      // of one stage
};

TableHeader headerOf(const SampleGrid& grid, const TableReading& reading) {
    TableHeader header(reading);
    for (std::size_t i = 0; i < reading.headerRows.size(); ++i) {
        const auto& cells = grid.row(i).cells;
        header.add({cells.begin(), cells.end()});
    }
    return header;
}

}  // namespace

void guessStages(const SampleGrid& grid, const WordRoles& words, TableGuess& guess) {
    TableReading& reading = guess.reading;
    const ColumnRole names =
        reading.layout == TableLayout::speciesRows ? ColumnRole::census : ColumnRole::species;
    std::vector<std::size_t> stageRows;
    bool isNamed = false;
    for (std::size_t i = 0; i < reading.headerRows.size(); ++i) {
        const bool isOfStages =
            reading.headerRows[i] == ColumnRole::stage || isRowOfStages(grid, i);
        if (isOfStages) stageRows.push_back(i);
        isNamed |= !isOfStages && reading.headerRows[i] == names;
    }
    for (const std::size_t i : stageRows) {
        reading.headerRows[i] = isNamed ? ColumnRole::stage : names;
        if (isNamed) ignoreTotals(grid, i, reading.columns);
    }
    if (!namesWithoutStages(headerOf(grid, reading), reading).empty()) {
        reading.sameStages = SameRule::sum;
        guess.doubts.push_back(TableDoubt::stages);
    }
    if (reading.layout != TableLayout::censusRows || reading.shortHeader) return;
    std::vector<std::size_t> stages;
    for (std::size_t column = 0; column < reading.columns.size(); ++column) {
        if (reading.columns[column] != ColumnRole::ignored) continue;
        if (words[column] == ColumnRole::stage) stages.push_back(column);
    }
    if (stages.empty()) return;
    const StageRows rows(grid, reading, stages);
    // Rows that repeat a stage are samples of their own.
    if (!rows.areSeveral || rows.repeat) return;
    for (const std::size_t column : stages) reading.columns[column] = ColumnRole::stage;
}

}  // namespace zorvel
