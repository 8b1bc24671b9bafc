// Shareholder quorum subsampling: the richness of a census at a fixed coverage (Alroy 2010, "The
// shifting balance of diversity among major marine animal groups", and "Fair sampling of taxonomic
// richness and unbiased estimation of origination and extinction rates"). Pure except for the
// random source and the console; each call owns its working data, so any thread may call with a
// source of its own.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "metrics/counts.h"
#include "metrics/random_source.h"

namespace zorvel {

// The trials of every estimate that is shown or exported.
inline constexpr std::int64_t sqsTrials = 100;

// Why there is no estimate, or why it is NaN.
enum class SqsAbsence {
    none,  // there is one
    fewerThanElevenSpecimens,
    everySpecimenSingleton,  // Good's u is 0
    quotaAboveCoverage,      // the summed adjusted frequencies do not reach the quota
    quotaAboveSpecimens,
    quotaNotPositive,   // NaN: every trial ends before its first draw
    noTrialKeptATaxon,  // NaN: the first taxon, above the quota by itself, was always thrown back
};
// How many censuses lack an estimate for each reason, by its place in the enumeration.
using SqsAbsenceCounts = std::array<std::int64_t, 7>;

struct SqsResult {
    std::optional<double> estimate;  // absent, or a number that may be NaN
    SqsAbsence absence = SqsAbsence::none;
    double frequencySum = 0;  // F, the largest coverage within reach; 0 where it was not computed

    // The console line about the absence; empty if there is none.
    [[nodiscard]] std::string warning() const;
    void writeWarning() const;
};

// A trial draws specimens at random without replacement until the adjusted frequencies of the taxa
// seen, (count - a) / N with a = 0.5 (f1 + f2) / S, sum to the quota. The taxon that takes the sum
// past the quota is thrown back with the probability of its frequency. The estimate is the
// geometric mean of the trials that saw a taxon, times their share of the trials.
//
// Unlike the first form of the method, the quota is not divided by Good's u: rare taxa are
// discounted in each frequency instead, and u serves only to refuse a census of singletons.
//
// trials: 0 or more (fewer count as 0). quota: a coverage, between 0 and 1 in normal use. A quota
// that is not above 0 (NaN included), or no trials, gives NaN; one above the coverage within reach
// (+infinity included) gives none. Entries below 1 are absent taxa. Time and memory grow with the
// number of taxa and of draws, never with that of specimens. Where the specimens do not fit in 64
// bits, N saturates, and taxa are drawn in proportion to the leading 63 bits.
SqsResult shareholderQuorum(CountsView counts, std::int64_t trials, double quota,
                            RandomSource& random);

// The same, with the warning written to the console.
std::optional<double> alroySQS(CountsView counts, std::int64_t trials, double quota,
                               RandomSource& random);

}  // namespace zorvel
