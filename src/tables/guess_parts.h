// The questions that make up the guess of a table, each in its file: the form of the text, the
// header and the layout, the roles of columns, and the marks of its cells. Pure.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "tables/sample_grid.h"

namespace zorvel {

// guess_form.cpp
struct FormGuess {
    TextForm form;
    SampleRows rows;  // in this form, the first of the text
    double score = 0;
    bool doubtful = false;
};
FormGuess guessForm(std::string_view head, bool isWhole, const TableChoices& choices);

// guess_layout.cpp
std::size_t headerHeight(const SampleGrid& grid);
// The header lacks the cell above the first column.
bool isShort(const SampleGrid& grid, std::size_t header);
// The column of names, where no word tells.
std::size_t labelColumn(const SampleGrid& grid, std::size_t header);
// Of a row above species rows: what it tells of each census.
std::optional<ColumnRole> metadataOf(const SampleGrid& grid, std::size_t i);
// Below a header: ind., ind., ind.
bool isRowOfUnits(const SampleGrid& grid, std::size_t i);
// Beside or between names: sexes or stages, perhaps with their totals.
bool isRowOfStages(const SampleGrid& grid, std::size_t i);
// Positive: a row for each species.
double speciesRowsScore(const SampleGrid& grid, std::size_t header);

// guess_roles.cpp
using WordRoles = std::vector<std::optional<ColumnRole>>;
// Roles by the words of the header, of each role the column of the lowest rank.
WordRoles rolesByWords(const SampleGrid& grid, std::size_t header);
std::vector<ColumnRole> wideRoles(const SampleGrid& grid, const TableReading& reading,
                                  const WordRoles& roles);

// guess_stages.cpp
// Rows and columns that tell sexes or stages apart get this role, where the counts of names that
// differ in it alone are to be added; it is asked where they stand at the end of names.
void guessStages(const SampleGrid& grid, const WordRoles& words, TableGuess& guess);

// guess_names.cpp
// The column of places, and those without which its censuses were mixed up: a quadrat in a
// transect, a replicate, a year. In their order; none without a column of places.
std::vector<std::size_t> nameColumns(const SampleGrid& grid, std::size_t header,
                                     const WordRoles& roles);

// guess_records.cpp
// The table as records, whether or not it is one.
struct RecordGuess {
    bool fits = false;      // a row for each record
    bool doubtful = false;  // which is not sure
    bool namesAreDoubtful = false;
    bool countsAreDoubtful = false;
    std::size_t header = 1;
    std::vector<ColumnRole> columns;
};
RecordGuess guessRecords(const SampleGrid& grid, const WordRoles& words);

// guess_numbers.cpp
// Takes columns of whole numbers that can hardly be counts, and whose headers say nothing, for
// ignored, and asks.
void guessNumbers(const SampleGrid& grid, TableGuess& guess);

// guess_marks.cpp
void guessMarks(const SampleGrid& grid, TableGuess& guess);
void guessDateOrder(const SampleGrid& grid, TableGuess& guess);
// Keeps the role of a total only where the sums agree, and finds others. isWhole: the table ends in
// the sample.
void settleTotals(const SampleGrid& grid, TableReading& reading, bool isWhole);
bool isPresenceTable(const SampleGrid& grid, const TableReading& reading);

}  // namespace zorvel
