// How a table is read: what its rows and columns are, how its numbers are written, and the rules
// for cells that are no plain counts. A plain value, found by guessing, changed by the user.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tables/rows.h"

namespace zorvel {

enum class TableLayout {
    censusRows,   // a row per census, a column per species
    speciesRows,  // a row per species, a column per census
    records,      // a row per census and species
};

// Of a column. In censusRows and speciesRows the columns of counts are `count`.
enum class ColumnRole {
    count,
    census,
    genus,  // put before the species
    species,
    latitude,
    longitude,
    date,
    year,  // with month and day, where there is no date
    month,
    day,
    notes,
    status,    // present or absent
    included,  // whether the metrics include the species
    stage,     // a sex or stage: counts that differ in it alone are added; wide layouts only
    total,     // sums of the others
    ignored,
};

enum class DateOrder { unknown, dayFirst, monthFirst };  // of 03/04/2021
enum class MissingRule { zero, problem, leaveOut };      // NA, "-", "?"; leaveOut: the census
enum class FractionRule { problem, round };
enum class SameRule { sum, apart };
enum class UnnamedRule { problem, rowNumber, above };
enum class CountFault { fraction, negative, tooLarge, notANumber };  // of a cell of counts

struct TableReading {
    TextForm form;      // of a text
    std::string sheet;  // of a workbook, its name; empty: the table is a text
    TableLayout layout = TableLayout::censusRows;
    std::size_t firstRow = 1;  // the first header row, or the first row of data without a header
    std::size_t lastRow = 0;   // 0: to the end
    // The row of sums that is not known by its words; 0: none.
    std::size_t totalsRow = 0;
    // One for each header row. censusRows: all `species` (genus above epithet). speciesRows:
    // `census`, or what the row tells of each census. Both: `stage`. records: `ignored`, the
    // columns have roles.
    std::vector<ColumnRole> headerRows;
    // The header lacks the cell above the first column.
    bool shortHeader = false;
    // Beyond them: ignored. Several that name the census are parts of its name, and several counts
    // of records are added.
    std::vector<ColumnRole> columns;
    std::vector<std::size_t> leftOutRows;  // by the user: numbers of rows, ascending

    char decimalMark = '.';
    char thousandsMark = 0;  // 0: none
    DateOrder dateOrder = DateOrder::unknown;
    bool presence = false;  // any mark stands for 1
    MissingRule missing = MissingRule::zero;
    FractionRule fractions = FractionRule::problem;
    std::vector<CountFault> takenAsZero;   // cells with these faults are no problem
    SameRule sameSpecies = SameRule::sum;  // within a census
    // Of a wide table: whether columns are one species or census whose headers differ in nothing
    // but a sex or stage at their end: "Poa M", "Poa F".
    SameRule sameStages = SameRule::apart;
    // Of censuses of one name: in the wide layouts whether their rows are one census; in records
    // whether another date or place makes another census (apart).
    SameRule sameCensus = SameRule::apart;
    UnnamedRule unnamed = UnnamedRule::problem;  // a census row without a name

    // A long table as Zorvel writes it, known by its header: read to the letter, with names as they
    // are and taxa of count 0, and a row without species and count begins a census.
    [[nodiscard]] bool isExact() const { return form.exact && layout == TableLayout::records; }
    [[nodiscard]] ColumnRole role(std::size_t column) const {
        return column < columns.size() ? columns[column] : ColumnRole::ignored;
    }
    [[nodiscard]] std::vector<std::size_t> columnsOf(ColumnRole role) const {
        std::vector<std::size_t> found;
        for (std::size_t column = 0; column < columns.size(); ++column) {
            if (columns[column] == role) found.push_back(column);
        }
        return found;
    }
    [[nodiscard]] std::size_t firstDataRow() const { return firstRow + headerRows.size(); }

    friend bool operator==(const TableReading&, const TableReading&) = default;
};

// The letters of a column as spreadsheets show them; column counts from 0: A, ..., Z, AA.
std::string columnLetters(std::size_t column);

}  // namespace zorvel
