// What a table seems to be, from a sample of it. Pure; nothing is decided for good: the user sees
// the guess before the table is read. Each question has candidates with scores; where the best two
// are close, the question is in doubt.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tables/encodings.h"
#include "tables/reading.h"

namespace zorvel {

// The first rows of a table.
struct TableSample {
    static constexpr std::size_t mostRows = 1000;
    static constexpr std::size_t mostBytes = 4 << 20;

    struct Row {
        std::size_t number = 0;
        std::vector<std::string> cells;
    };
    // As many as fit in memory well: cells of workbooks may be repeated without end.
    static constexpr std::size_t mostCells = mostBytes;

    std::vector<Row> rows;
    bool whole = true;  // there are no others
    std::string sheet;  // of a workbook, its name
};

// What the user has settled; the rest is guessed.
struct TableChoices {
    std::optional<char> separator;
    std::optional<TableEncoding> encoding;
    std::optional<TableLayout> layout;
    std::optional<std::size_t> firstRow;
    std::optional<std::size_t> lastRow;
    std::optional<std::size_t> headerRows;

    friend bool operator==(const TableChoices&, const TableChoices&) = default;
};

enum class TableDoubt {
    separator,
    layout,
    names,    // of records: which columns name the census and the species
    counts,   // of records: which columns hold the count
    stages,   // of a wide table: whether headers that differ in a sex or stage alone are one
    numbers,  // of a wide table: whether columns of unlikely counts hold some, see `unlikely`
    amounts,  // of a wide table whose title tells of a cover or a mass: whether it holds counts
    visits,  // of records: whether another date makes another census, where nearly each has its own
    dateOrder,
    thousandsMark
};

struct TableGuess {
    TableReading reading;
    std::vector<TableDoubt> doubts;  // in this order, each once
    // Columns of a wide table that may be years, areas or other numbers; taken as ignored.
    std::vector<std::size_t> unlikely = {};
};

// Of the first bytes of a text, at most TableSample::mostBytes. whole: they are all of it.
TableGuess guessTable(std::string_view bytes, bool whole, const TableChoices& choices = {});

// Of rows whose form is known: a sheet, or a text in the form given.
TableGuess guessTable(const TableSample& sample, const TextForm& form,
                      const TableChoices& choices = {});

// The rows of the bytes; the last one is left out if it may be cut. mostCells: of more than 20
// rows.
TableSample sampleRows(RowSource& source, bool whole,
                       std::size_t mostCells = TableSample::mostCells);

}  // namespace zorvel
