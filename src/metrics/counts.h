// The inputs of every analysis: abundances of taxa, without names.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zorvel {

// One entry a taxon, each its number of specimens. An entry below 1 is an absent taxon; the order
// carries no meaning. Sums of entries are taken to fit in 64 bits; a sum that does not saturates.
using CountsVector = std::vector<std::int64_t>;
using CountsView = std::span<const std::int64_t>;

// One row a census, one column a taxon name of the project; every row has the same length.
using CountsMatrix = std::vector<CountsVector>;

}  // namespace zorvel
