// What the tests of rarefaction share.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "metrics/random_source.h"
#include "metrics/rarefaction.h"

namespace zorvel {

// The fields of a point as bits, so that NaN equals NaN and nothing is taken for equal but itself.
inline std::array<std::int64_t, 7> bits(const Rarefaction& point) {
    const auto of = [](double value) {
        return std::isnan(value) ? std::int64_t{-1} : std::bit_cast<std::int64_t>(value);
    };
    return {point.sampleSize,  of(point.estimate), of(point.variance), of(point.lower95),
            of(point.upper95), of(point.lower99),  of(point.upper99)};
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
