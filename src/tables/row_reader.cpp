#include "tables/row_reader.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"

namespace zorvel {

// --- header and columns ---

void TableHeader::add(std::vector<std::string> cells) {
    if (reading_.shortHeader && rows_.empty()) cells.insert(cells.begin(), std::string());
    rows_.push_back(std::move(cells));
}

std::string_view TableHeader::cell(std::size_t i, std::size_t column) const {
    return column < rows_[i].size() ? std::string_view(rows_[i][column]) : std::string_view();
}

std::string TableHeader::name(std::size_t column) const {
    std::string name;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!isOfNames(i)) continue;
        const std::string_view part = cell(i, groupOf(i, column));
        if (!name.empty() && !part.empty()) name += ' ';
        name += part;
    }
    return name;
}

std::size_t TableHeader::groupOf(std::size_t i, std::size_t column) const {
    bool isAbove = false;
    for (std::size_t below = i + 1; below < rows_.size(); ++below) {
        const bool isPart = isOfNames(below) || reading_.headerRows[below] == ColumnRole::stage;
        isAbove |= isPart && !cell(below, column).empty();
    }
    for (std::size_t left = column; isAbove && reading_.role(left) == ColumnRole::count; --left) {
        if (!cell(i, left).empty()) return left;
        if (left == 0) break;
    }
    return column;
}

std::string TableHeader::text(std::size_t column) const {
    std::string text = name(column);
    if (text.empty() && !rows_.empty()) text = cell(0, column);
    return text;
}

ColumnsByRole::ColumnsByRole(const TableReading& reading) {
    const auto columnOf = [&reading](ColumnRole role) -> std::optional<std::size_t> {
        const auto found = std::find(reading.columns.begin(), reading.columns.end(), role);
        if (found == reading.columns.end()) return std::nullopt;
        return static_cast<std::size_t>(found - reading.columns.begin());
    };
    names = reading.columnsOf(ColumnRole::census);
    species = columnOf(ColumnRole::species);
    genus = columnOf(ColumnRole::genus);
    status = columnOf(ColumnRole::status);
    included = columnOf(ColumnRole::included);
    for (const ColumnRole role :
         {ColumnRole::latitude, ColumnRole::longitude, ColumnRole::date, ColumnRole::notes}) {
        if (const auto column = columnOf(role)) attributes.emplace_back(role, *column);
    }
    const auto year = columnOf(ColumnRole::year);
    const auto month = columnOf(ColumnRole::month);
    const auto day = columnOf(ColumnRole::day);
    if (!columnOf(ColumnRole::date) && year && month && day) dateParts = {*year, *month, *day};
    counts = reading.columnsOf(ColumnRole::count);
    stages = reading.layout == TableLayout::censusRows && columnOf(ColumnRole::stage).has_value();
    exact = reading.isExact() && !names.empty() && species && !counts.empty();
}

// --- censuses and taxa ---

RowReader::RowReader(const TableReading& reading, TableRecords& records, NamePool* names)
    : reading_(reading),
      records_(records),
      columns_(reading),
      rules_(reading, records),
      gathered_(names, reading.isExact()) {}

std::optional<std::string> RowReader::censusName(const SparseRow& row) {
    const std::vector<std::size_t>& columns = columns_.names;
    if (columns_.exact) return std::string(row.cell(columns.front()));
    std::string name;
    nameParts_.resize(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string_view cell = row.cell(columns[i]);
        std::string& part = nameParts_[i];
        if (!cell.empty() || reading_.unnamed != UnnamedRule::above) part = nameInOneLine(cell);
        if (!rules_.isText(cell, placeOf(row, columns[i]))) return std::nullopt;
        if (part.empty() && reading_.unnamed != UnnamedRule::rowNumber) {
            rules_.problem(placeOf(row, columns[i]), {},
                           columns.size() == 1 ? "The census has no name."
                                               : "A part of the name of the census is blank.");
            return std::nullopt;
        }
        if (!name.empty() && !part.empty()) name += ' ';
        name += part;
    }
    if (name.empty()) name = "row " + integerText(static_cast<std::int64_t>(row.number));
    return name;
}

std::string RowReader::keyOf(const MockCensus& census) const {
    std::string key = columns_.exact ? census.name : canonicalForm(census.name);
    if (!columns_.exact && reading_.sameCensus == SameRule::sum) return key;
    key.append(1, '\0').append(shortestText(census.latitude));
    key.append(1, ' ').append(shortestText(census.longitude)).append(1, ' ');
    if (census.timeStamp) key += integerText(census.timeStamp->time_since_epoch().count());
    return key;
}

void RowReader::readAttributes(MockCensus& census, const SparseRow& row) {
    for (const auto& [role, column] : columns_.attributes) {
        rules_.readAttribute(census, role, row.cell(column), placeOf(row, column), columns_.exact);
    }
    if (columns_.dateParts.empty()) return;
    std::string date;
    for (const std::size_t column : columns_.dateParts) {
        if (row.cell(column).empty()) return;
        if (!date.empty()) date += '-';
        date += row.cell(column);
    }
    rules_.readDate(census, date, placeOf(row, columns_.dateParts.front()));
}

bool RowReader::isSpeciesText(const SparseRow& row) {
    const auto isText = [&](std::optional<std::size_t> column) {
        return !column || rules_.isText(row.cell(*column), placeOf(row, column));
    };
    return isText(columns_.genus) && isText(columns_.species);
}

std::string RowReader::speciesName(const SparseRow& row, std::string_view species) const {
    const std::string_view genus = columns_.genus ? row.cell(*columns_.genus) : "";
    const bool isWhole =
        species.starts_with(genus) && species.substr(genus.size()).starts_with(' ');
    if (genus.empty() || isWhole) return std::string(species);
    return std::string(genus) + " " + std::string(species);
}

bool RowReader::addTaxon(std::size_t census, std::size_t species, std::int64_t value,
                         const TablePlace& place) {
    if (value <= 0 && !columns_.exact) return false;
    if (reading_.sameSpecies == SameRule::sum) {
        if (MockTaxon* const known = gathered_.find(census, species)) {
            addCount(known->abundance, value, place);
            return false;
        }
    }
    gathered_.addTaxon(census, species, value);
    return true;
}

void RowReader::addCount(std::int64_t& sum, std::int64_t value, const TablePlace& place) {
    ++records_.notices.summedSpecies;
    if (!__builtin_add_overflow(sum, value, &sum)) return;
    sum = std::numeric_limits<std::int64_t>::max();
    rules_.problem(place, {},
                   "The sum of the counts of this species is more than 9223372036854775807.");
}

// Censuses of missing marks alone are left out, and those with any if the rule says so.
void RowReader::finish() {
    const bool any = reading_.missing == MissingRule::leaveOut;
    cells_.resize(gathered_.censuses.size());
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        MockCensus& census = gathered_.censuses[i];
        if (cells_[i].hasMissing && (any || !cells_[i].hasValues)) {
            records_.notices.leftOutCensuses.push_back(census.name);
        } else {
            records_.notices.emptyCensuses += census.taxa.empty();
            census.taxa.shrink_to_fit();
            records_.censuses.push_back(std::move(census));
        }
    }
}

}  // namespace zorvel
