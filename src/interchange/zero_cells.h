// Runs of absent taxa: most cells of a census matrix are zeros, and reading them one at a time
// would be most of the work.
#pragma once

#include <cstddef>
#include <string_view>

namespace zorvel {

// How many whole cells "0," the text begins with. Looks at eight bytes at a time.
std::size_t countZeroCells(std::string_view text);

}  // namespace zorvel
