// Reads rows copied from a spreadsheet: cells between tabs, a cell in quotes if it contains a tab,
// a line break or a quote. All rows or none. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "store/census_block.h"

namespace zorvel {

// What is wrong with a cell, as an English sentence. Row and column count from 1; 0 is for the text
// as a whole.
struct PasteProblem {
    std::size_t row = 0;
    std::size_t column = 0;
    const char* reason = "";
};

template <class T>
using Pasted = Result<std::vector<T>, PasteProblem>;

// Cells of the widest of the first rows, without empty ones at its right end.
std::size_t pastedColumns(std::string_view text);

// Names in the first column, abundances in the second; without a second column the abundances are
// 0. Empty rows and empty cells to the right are skipped. At least one row.
Pasted<TaxonValues> pastedTaxa(std::string_view text);

// Names in the first column; other columns, such as the number of species of a copied census, are
// not read.
Pasted<std::string> pastedCensusNames(std::string_view text);

}  // namespace zorvel
