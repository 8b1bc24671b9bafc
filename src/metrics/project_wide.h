// The metrics of a whole project: pooled, averaged over its censuses, and incidence-based. Each
// takes the counts without their zeros, or as a full matrix, the plain form of the same: both give
// the same numbers to the last bit. Safe on any thread, given a random source of its own.
#pragma once

#include <cstdint>
#include <optional>

#include "metrics/census_metrics.h"
#include "metrics/counts.h"
#include "metrics/random_source.h"
#include "metrics/rarefaction.h"
#include "metrics/sparse_counts.h"
#include "metrics/sqs.h"

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

// NaN throughout for a matrix without rows.
AverageMetrics averageMetrics(const SparseCounts& counts);
AverageMetrics averageMetrics(const CountsMatrix& matrix);

// The average over the rows of the expected richness of n specimens (individualBasedPoint). A
// census of n specimens or fewer takes part with its richness, as it stands. NaN without rows.
double averageRarefiedRichness(const SparseCounts& counts, std::int64_t n,
                               RarefactionCalculator& calculator);
double averageRarefiedRichness(const CountsMatrix& matrix, std::int64_t n,
                               RarefactionCalculator& calculator);

// The average of the SQS estimates of those rows that have one: a row with a warning or fewer than
// 11 specimens has none, nor has one whose trials saw nothing (a single taxon is always thrown
// back) or whose quota is not above 0, which give NaN.
struct AverageSqs {
    std::optional<double> estimate;  // absent where no row has one
    std::int64_t censuses = 0;       // the rows that have one
    SqsAbsenceCounts lacking{};      // the other rows
};

// 100 trials a row at the quota; nothing is written to the console. Each row draws from a generator
// of its own, whose seed comes from random: an estimate does not depend on the number of threads
// (0: one a processor) that share the rows.
AverageSqs averageAlroySQS(const SparseCounts& counts, double quota, RandomSource& random,
                           unsigned threads = 0);
AverageSqs averageAlroySQS(const CountsMatrix& matrix, double quota, RandomSource& random,
                           unsigned threads = 0);

struct ProjectWideMetrics {
    CensusMetrics pooled;
    double pooledRarefiedRichness = 0;
    std::optional<double> pooledAlroySQS;
    AverageMetrics averages;
    double averageRarefiedRichness = 0;
    AverageSqs averageAlroySQS;
    double chaoTwo = 0;
    double sampleBasedRarefiedRichness = 0;
};

// pooled: one entry a taxon name, summed over the censuses. rarefactionSize counts specimens for
// the pooled value and for the average, and censuses for the sample-based one. SQS with 100 trials
// at sqsQuota; warnings of the pooled one go to the console. counts: at least one row.
ProjectWideMetrics projectWideMetrics(CountsView pooled, const SparseCounts& counts,
                                      std::int64_t rarefactionSize, double sqsQuota,
                                      RandomSource& random, RarefactionCalculator& calculator);
ProjectWideMetrics projectWideMetrics(CountsView pooled, const CountsMatrix& matrix,
                                      std::int64_t rarefactionSize, double sqsQuota,
                                      RandomSource& random, RarefactionCalculator& calculator);

}  // namespace zorvel
