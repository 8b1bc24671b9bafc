// Shareholder quorum subsampling: the richness of a census at a fixed coverage.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "metrics/counts.h"
#include "metrics/random_source.h"

namespace zorvel {

// Why there is no estimate.
enum class SqsAbsence {
    none,  // there is one
    fewerThanElevenSpecimens,
    everySpecimenSingleton,  // Good's u is 0
    quotaAboveCoverage,      // the summed adjusted frequencies do not reach the quota
    quotaAboveSpecimens,
};

struct SqsResult {
    std::optional<double> estimate;  // absent, or a number that may be NaN
    SqsAbsence absence = SqsAbsence::none;
    double frequencySum = 0;  // F, the largest coverage within reach; 0 where it was not computed

    // The console line for the absence; empty where there is none to write.
    [[nodiscard]] std::string warning() const;
};

// trials: 0 or more (fewer count as 0); quota: a coverage, between 0 and 1 in normal use.
SqsResult shareholderQuorum(CountsView counts, std::int64_t trials, double quota,
                            RandomSource& random);

// The same, with the warning written to the console.
std::optional<double> alroySQS(CountsView counts, std::int64_t trials, double quota,
                               RandomSource& random);

}  // namespace zorvel
