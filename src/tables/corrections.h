// What a user changes of the guess about a table, in the window or by options. Plain values.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include "tables/guess.h"
#include "tables/reader.h"
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
    std::optional<SameRule> sameStages;
    std::optional<UnnamedRule> unnamed;
};

// Of columns, marks and rules; the choices have led the guess already. A column takes its role from
// others that were guessed for it, unless a table has several of them: species or censuses of a
// wide table, totals, and what is ignored. Questions that are answered are no longer in doubt.
void applyCorrections(TableGuess& guess, const TableCorrections& corrections);

// Whether to add stages is no question where the reading has found none to add.
void dropIdleDoubts(std::vector<TableDoubt>& doubts, const TableNotices& notices);

}  // namespace zorvel
