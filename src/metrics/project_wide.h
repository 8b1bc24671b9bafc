// The metrics of a whole project: pooled, averaged over its censuses, and incidence-based.
#pragma once

#include <cstdint>
#include <optional>

#include "metrics/census_metrics.h"
#include "metrics/counts.h"
#include "metrics/random_source.h"
#include "metrics/rarefaction.h"

namespace zorvel {

// Averages over the rows of a counts matrix; a row with a value that is not finite makes its
// average not finite.
struct AverageMetrics {
    double abundance = 0;
    double richness = 0;
    double chaoClassic = 0;
    double shannonH = 0;
    double fisherAlpha = 0;
    double pielouJ = 0;
    double simpsonD = 0;
    double buzasE = 0;
};

struct ProjectWideMetrics {
    CensusMetrics pooled;
    double pooledRarefiedRichness = 0;
    std::optional<double> pooledAlroySQS;
    AverageMetrics averages;
    double chaoTwo = 0;
    double sampleBasedRarefiedRichness = 0;
};

// rows: at least one. NaN throughout for a matrix without rows.
AverageMetrics averageMetrics(const CountsMatrix& matrix);

// pooled: one entry a taxon name, summed over the censuses. rarefactionSize counts specimens for
// the pooled value and censuses for the sample-based one. SQS with 100 trials at sqsQuota; its
// warnings go to the console. matrix: at least one row.
ProjectWideMetrics projectWideMetrics(CountsView pooled, const CountsMatrix& matrix,
                                      std::int64_t rarefactionSize, double sqsQuota,
                                      RandomSource& random, RarefactionCalculator& calculator);

}  // namespace zorvel
