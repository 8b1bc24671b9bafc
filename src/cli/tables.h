// Tables of any layout on the command line: their options, and the reading of a file as one.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "interchange/text_file.h"
#include "tables/corrections.h"
#include "tables/guess.h"
#include "tables/reader.h"
#include "workbook/workbook.h"

namespace CLI {
class App;
}

namespace zorvel::cli {

struct Call;
class Output;

// What the options settle of every file; the rest is guessed.
struct TableOptions {
    TableCorrections corrections;      // without roles, which need the header of each file
    std::optional<std::string> sheet;  // of workbooks: its name or number
    std::vector<std::pair<std::string, ColumnRole>> columns;  // header or letters, and role
    bool guess = false;              // what is in doubt is taken as it seems to be
    bool preview = false;            // of an import: nothing is stored
    std::vector<std::string> given;  // the options that were given, for messages
};

// The options, in a group of their own.
void addTableOptions(CLI::App& app, TableOptions& options);

// What a table gave, and how it was read.
struct ReadTable {
    TableGuess guess;
    TableRecords records;
    std::vector<std::string> header;  // of each column
    std::string place;                // for messages: the file, or "FILE!SHEET"
    std::vector<SheetInfo> sheets;    // of a workbook
    std::string sheetNotice;          // which sheet was taken of several; empty otherwise
};

// file: as messages call it. Absent, with the reason on standard error, where the file cannot be
// read or a column of the options is not there.
std::optional<ReadTable> readTableFile(const std::string& file, InputFile input,
                                       const TableOptions& options, NamePool& names);

// Doubts and problems on standard error; false if there are any that keep the table from being
// used.
bool isUsable(const ReadTable& table, const TableOptions& options);

// How each file is understood and what would be stored, as text or JSON. False if one of them
// cannot be used.
bool previewTables(const Call& call, Output& output);

}  // namespace zorvel::cli
