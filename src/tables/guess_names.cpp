// Which columns together name a census.
#include <algorithm>
#include <map>

#include "tables/guess_parts.h"
#include "tables/words.h"

namespace zorvel {
namespace {

// Of each row: the cells of some columns.
using RowKeys = std::vector<std::string>;

void addKeys(RowKeys& keys, const SampleGrid& grid, std::size_t header, std::size_t column) {
    std::string_view last;  // of merged cells, the first has the text
    for (std::size_t i = header; i < grid.height(); ++i) {
        if (!grid.cell(i, column).empty()) last = grid.cell(i, column);
        keys[i].append(last).append(1, '\n');
    }
}

RowKeys keysOf(const SampleGrid& grid, std::size_t header, std::size_t column) {
    RowKeys keys(grid.height());
    addKeys(keys, grid, header, column);
    return keys;
}

// Whether rows of one key always have one value.
bool determines(const SampleGrid& grid, std::size_t header, const RowKeys& keys,
                const RowKeys& values) {
    std::map<std::string_view, std::string_view> valueOf;
    for (std::size_t i = header; i < grid.height(); ++i) {
        if (grid.isSummary(i) || grid.row(i).filled == 0) continue;
        if (valueOf.try_emplace(keys[i], values[i]).first->second != values[i]) return false;
    }
    return true;
}

enum class Part { none, place, repeat };

// Whether a column may be a part of the names of censuses: a place, or what tells censuses of one
// place apart.
Part partOf(const SampleGrid& grid, std::string_view header) {
    const auto meaning = grid.meaning(header);
    if (!meaning) return Part::none;
    switch (meaning->role) {
        case ColumnRole::census:
            if (meaning->rank == 3 || meaning->rank == 8) return Part::repeat;
            return meaning->rank == 2 || meaning->rank == 7 ? Part::none : Part::place;
        case ColumnRole::year:
        case ColumnRole::month:
        case ColumnRole::day:
            return Part::repeat;
        case ColumnRole::ignored:
            return meaning->rank == 1 || meaning->rank == 4 ? Part::repeat : Part::none;
        default:
            return Part::none;
    }
}

bool areBareNumbers(const SampleGrid& grid, std::size_t header, std::size_t column) {
    for (std::size_t i = header; i < grid.height(); ++i) {
        if (!grid.cell(i, column).empty() && !isDigits(grid.cell(i, column))) return false;
    }
    return true;
}

bool hasBlanks(const SampleGrid& grid, std::size_t header, std::size_t column) {
    for (std::size_t i = header; i < grid.height(); ++i) {
        const bool isRow = !grid.isSummary(i) && grid.row(i).filled > 0;
        if (isRow && grid.cell(i, column).empty()) return true;
    }
    return false;
}

// N, and N1 and N2 within it.
bool beginsEach(const SampleGrid& grid, std::size_t header, std::size_t whole, std::size_t part) {
    for (std::size_t i = header; i < grid.height(); ++i) {
        const std::string_view start = grid.cell(i, whole);
        if (start.empty() || !grid.cell(i, part).starts_with(start)) return false;
    }
    return true;
}

}  // namespace

std::vector<std::size_t> nameColumns(const SampleGrid& grid, std::size_t header,
                                     const WordRoles& roles) {
    const auto first = std::find(roles.begin(), roles.end(), std::optional(ColumnRole::census));
    if (first == roles.end()) return {};
    const auto main = static_cast<std::size_t>(first - roles.begin());
    std::vector<std::size_t> names{main};
    // Rows that differ in these are different censuses anyway.
    RowKeys keys = keysOf(grid, header, main);
    std::vector<std::size_t> dates;
    bool isDated = false;
    for (std::size_t column = 0; column < roles.size(); ++column) {
        const auto role = roles[column];
        if (role == ColumnRole::date) {
            isDated = true;
            addKeys(keys, grid, header, column);
        }
        const bool isPart =
            role == ColumnRole::year || role == ColumnRole::month || role == ColumnRole::day;
        if (isPart) dates.push_back(column);
    }
    if (!isDated && dates.size() == 3) {
        for (const std::size_t column : dates) addKeys(keys, grid, header, column);
    }
    const bool isCut = grid.height() + 1 >= TableSample::mostRows;
    for (const Part kind : {Part::place, Part::repeat}) {
        for (std::size_t column = 0; column < roles.size(); ++column) {
            if (column == main || partOf(grid, grid.headerText(header, column)) != kind) continue;
            const RowKeys values = keysOf(grid, header, column);
            // Numbers of plots begin again at the next site, maybe below the sample.
            const bool mayRepeat =
                isCut && kind == Part::place && areBareNumbers(grid, header, main);
            if (determines(grid, header, keys, values) && !mayRepeat) continue;
            const auto meaning = grid.meaning(grid.headerText(header, column));
            const bool isPlain = meaning->role == ColumnRole::census;
            // A year or a depth that only some rows have tells no censuses apart.
            if (!isPlain && hasBlanks(grid, header, column)) continue;
            names.push_back(column);
            addKeys(keys, grid, header, column);
        }
    }
    if (names.size() == 2 && beginsEach(grid, header, main, names[1])) names.erase(names.begin());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace zorvel
