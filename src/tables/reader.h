// Reads a table as censuses, in one pass, row by row. Pure; any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "interchange/parsers.h"
#include "tables/reading.h"
#include "tables/rows.h"

namespace zorvel {

// A cell, or a row where the column is not set, and what there is to say of it.
struct TableRemark {
    std::size_t row = 0;                // from 1
    std::size_t line = 0;               // of a text, from 1
    std::optional<std::size_t> column;  // from 0
    std::string cell;
    std::string reason;  // a sentence without the place: "2.5 is not a whole number. ..."
    std::optional<CountFault> fault = {};

    friend bool operator==(const TableRemark&, const TableRemark&) = default;
};

// The first are kept, all are counted.
struct TableRemarks {
    static constexpr std::size_t mostKept = 1000;
    std::vector<TableRemark> kept;
    std::size_t count = 0;
};

// What was read by a rule rather than by its letter.
struct TableNotices {
    std::size_t blankCells = 0;  // of counts, taken as 0
    TableRemarks missing;        // NA and the like, taken as 0 or with their census left out
    TableRemarks takenAsZero;    // counts with a fault, by the rule of that name
    TableRemarks countedOnce;    // records without a count, taken as 1
    std::size_t roundedCells = 0;
    std::size_t summedSpecies = 0;          // further rows or columns of a species within a census
    std::size_t absentRecords = 0;          // status absent
    std::vector<std::size_t> stageColumns;  // that were added by TableReading::sameStages
    std::optional<std::size_t> totalsRow;
    std::vector<std::string> totalsColumns;  // that are not known by their words, like the ignored
    std::vector<std::size_t> noteRows;       // below the table
    std::vector<std::string> leftOutCensuses;
    std::size_t emptyCensuses = 0;            // without species, kept
    std::vector<std::string> ignoredColumns;  // letters, or letters and header: B "Observer"
};

struct TableRecords {
    std::vector<MockCensus> censuses;  // in the order of the table
    TableRemarks problems;
    TableNotices notices;
    std::size_t lastRow = 0;  // that was read
};

// All rows of the source. A table with problems gives the censuses as far as they could be read,
// for a preview only. Stopped: what was read until then.
// names: the pool of the project, if there is one.
TableRecords readTable(RowSource& source, const TableReading& reading,
                       const std::stop_token& stop = {}, NamePool* names = nullptr);

// "C4: 2.5 is not a whole number. ..."; "row 4: ..." without a column.
std::string remarkText(const TableRemark& remark);

}  // namespace zorvel
