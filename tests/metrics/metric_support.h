// What the tests of metrics share.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "metrics/random_source.h"
#include "metrics/rarefaction.h"
#include "tests/support/extreme_values.h"

namespace zorvel {

// To the last bit, the sign of zero included; any NaN is the same as any other.
inline bool sameNumber(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Every field to the last bit.
inline bool samePoint(const Rarefaction& a, const Rarefaction& b) {
    return a.sampleSize == b.sampleSize && sameNumber(a.estimate, b.estimate) &&
           sameNumber(a.variance, b.variance) && sameNumber(a.lower95, b.lower95) &&
           sameNumber(a.upper95, b.upper95) && sameNumber(a.lower99, b.lower99) &&
           sameNumber(a.upper99, b.upper99);
}

// Counts from 1 to exp(spread), evenly spread over their logarithms.
inline CountsVector randomCommunity(std::uint64_t seed, std::size_t taxa, double spread) {
    SeededRandom random(seed);
    CountsVector counts(taxa);
    for (std::int64_t& count : counts) {
        count = static_cast<std::int64_t>(std::exp(random.bits32() / 4294967296.0 * spread));
    }
    return counts;
}

}  // namespace zorvel
