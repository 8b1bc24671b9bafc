// What the window for tables shows of a table: its first rows, what each column and row is taken
// for, what would be read, and what keeps it from being read. Plain values, made away from the main
// thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <stop_token>
#include <string>
#include <vector>

#include "tables/guess.h"
#include "tables/reader.h"
#include "ui/tables/table_corrections.h"
#include "ui/tables/table_input.h"

namespace zorvel {

struct TablePreview {
    static constexpr std::size_t mostRows = 200;
    static constexpr std::size_t mostColumns = 60;
    static constexpr std::size_t mostCensuses = 50;
    static constexpr std::size_t longestCell = 200;  // bytes

    enum class RowState { read, header, leftOut };
    struct Row {
        std::size_t number = 0;  // from 1
        RowState state = RowState::read;
        std::vector<std::string> cells;  // of the columns shown, shortened
    };
    struct Census {
        std::string name;
        std::size_t species = 0;
        std::int64_t individuals = 0;
    };

    std::string sheet;    // empty for a text
    std::string failure;  // why rows could not be read; a part of a sentence
    TableReading reading;
    std::vector<TableDoubt> doubts;         // that the user has not settled
    std::vector<std::size_t> unlikely;      // see TableGuess
    std::vector<std::size_t> stageColumns;  // see TableNotices
    std::string header;                     // the texts of the header rows; empty without one
    std::vector<Row> rows;                  // ascending; those with problems follow after gaps
    std::vector<std::size_t> columns;       // shown: their places from 0, ascending
    std::size_t readRows = 0;               // of the table, until now
    bool whole = true;                      // all rows were read
    std::vector<Census> censuses;           // the first of those that would be read
    std::size_t censusCount = 0;
    TableRemarks problems;
    std::map<std::size_t, std::size_t> problemsOfColumn;
    std::size_t lastRow = 0;    // with records
    std::size_t totalsRow = 0;  // 0: none
    std::vector<std::size_t> noteRows;
    std::vector<std::string> notices;  // the others
};

using TableRows = std::vector<TableSample::Row>;

// Guesses, corrects and reads: all rows of a short input, otherwise the first
// TableSample::mostRows. others: later rows, ascending, in which a pass over all of them has found
// problems. Stopped: as far as it was read.
TablePreview previewTable(const TableInput& input, std::size_t sheet,
                          const TableCorrections& corrections, const TableRows& others = {},
                          const std::stop_token& stop = {});

// The rows in which the problems are, a limited number of them.
TableRows rowsOfProblems(RowSource& source, const TableRemarks& problems);

// "censuses in rows 2-41, species in columns B-M; row 42 (total) left out", after the form.
std::string understoodText(const TablePreview& preview);

// Columns as ranges of letters: "B-D, F-M".
std::string columnsText(const std::vector<std::size_t>& columns);

}  // namespace zorvel
