// Sums over all pairs of taxa by the sum of their counts, on which the chance that both are missing
// depends alone. The pairs of each sum are counted once a curve; a point then takes one step of a
// recurrence for each possible sum, and neither logarithms nor exponentials.
//
// Internal to this folder. Immutable once made. Memory: 32 bytes for each possible sum.
#pragma once

#include <cstdint>
#include <vector>

#include "metrics/abundance_classes.h"
#include "metrics/missing_taxa.h"

namespace zorvel {

class PairSums {
  public:
    // classes: in increasing order. total: N, above 0. Sums above largestSum are left out.
    PairSums(const std::vector<AbundanceClass>& classes, std::int64_t total,
             std::int64_t largestSum);

    // For n of 1 .. N - 1. Taxa and pairs with more than cut specimens count as never missing; cut
    // is at most the largest sum.
    [[nodiscard]] MissingTaxa at(std::int64_t n, std::int64_t cut) const;

  private:
    void countPairs(const std::vector<AbundanceClass>& classes);

    std::int64_t total_;
    std::vector<double> taxa_;        // of each count
    std::vector<double> pairs_;       // of each sum
    std::vector<long double> ratio_;  // s / (N - s)
};

}  // namespace zorvel
