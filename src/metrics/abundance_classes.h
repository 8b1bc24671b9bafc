// The taxa of a census in classes of equal counts: what every sum over taxa, or over pairs of taxa,
// needs of them. Internal to this folder; pure and safe on any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "metrics/counts.h"

namespace zorvel {

struct AbundanceClass {
    std::int64_t count = 0;  // specimens of each taxon, at least 1
    std::int64_t taxa = 0;   // how many taxa have it
};

// In increasing order of count; entries below 1 belong to none.
std::vector<AbundanceClass> abundanceClasses(CountsView counts);

}  // namespace zorvel
