// What the user changed of the guess about a table. Kept for the next table of the same header, of
// a limited number of headers. Plain values, except for the store, which is of the main thread.
#pragma once

#include <QString>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tables/guess.h"
#include "tables/reading.h"

namespace zorvel {

struct TableCorrections {
    TableChoices choices;                     // where the guess begins
    std::map<std::size_t, ColumnRole> roles;  // of columns from 0
    std::vector<std::size_t> leftOutRows;     // numbers of rows, ascending
    std::optional<char> decimalMark;
    std::optional<char> thousandsMark;  // 0: none
    std::optional<DateOrder> dateOrder;
    std::optional<bool> presence;
    std::optional<MissingRule> missing;
    std::optional<FractionRule> fractions;
    std::vector<CountFault> takenAsZero;
    std::optional<SameRule> sameSpecies;
    std::optional<SameRule> sameCensus;
    std::optional<UnnamedRule> unnamed;
};

// One change of them.
using TableCorrection = std::function<void(TableCorrections& corrections)>;

// What the user changed of columns, marks and rules; the choices have led the guess already.
void applyCorrections(TableReading& reading, const TableCorrections& corrections);

// Whether the user has answered the question.
bool settles(const TableCorrections& corrections, TableDoubt doubt);

// As text and back; what cannot be read is left as the guess has it. Rows left out and the last row
// are of one file and are not written.
QString correctionsText(const TableCorrections& corrections);
TableCorrections readCorrections(const QString& text);

// header: of the table as it was guessed, see TablePreview.
std::optional<TableCorrections> keptCorrections(const std::string& header);
void keepCorrections(const std::string& header, const TableCorrections& corrections);

}  // namespace zorvel
