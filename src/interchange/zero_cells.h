// Runs of absent taxa: most cells of a census matrix are zeros, and reading or writing them one at
// a time is most of the work.
#pragma once

#include <cstddef>
#include <string_view>

namespace zorvel {

// How many whole cells "0," the text begins with, looking at 8 or 16 bytes at a time.
std::size_t countZeroCells(std::string_view text);

// The same without instructions of a certain processor.
std::size_t countZeroCellsPortably(std::string_view text);

}  // namespace zorvel
