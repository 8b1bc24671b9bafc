// Reads rows that were copied from a spreadsheet: cells between tabs, a cell in quotes where it
// holds a tab, a line break or a quote. All of it or nothing.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "store/census_block.h"

namespace zorvel {

// What is wrong with a cell: a sentence in English, to be translated where it is shown; row and
// column count from 1, and are 0 where the text as a whole is meant.
struct PasteProblem {
    std::size_t row = 0;
    std::size_t column = 0;
    const char* reason = "";
};

template <class T>
using Pasted = Result<std::vector<T>, PasteProblem>;

// Names in the first column, abundances in the second; without a second column the abundances are
// 0. Empty rows are passed over, and so are empty cells to the right. At least one row.
Pasted<TaxonValues> pastedTaxa(std::string_view text);

// Names in the first column; what stands to the right of it (a copied census has its number of
// species there) is not read.
Pasted<std::string> pastedCensusNames(std::string_view text);

}  // namespace zorvel
