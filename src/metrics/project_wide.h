// Averages of metrics over the censuses of a project. Safe on any thread, with a random source of
// its own.
#pragma once

#include <cstdint>
#include <optional>

#include "metrics/counts.h"
#include "metrics/metric_table.h"
#include "metrics/random_source.h"
#include "metrics/rarefaction.h"
#include "metrics/sqs.h"

namespace zorvel {

// Averages over the rows of the metrics that follow from their counts alone; a row with a value
// that is not finite makes its average not finite. NaN throughout without rows.
MetricValues averageMetrics(const SparseCounts& counts);

// The average over the rows of the expected richness of n specimens (individualBasedPoint). A
// census of n specimens or fewer counts with its richness. NaN without rows.
double averageRarefiedRichness(const SparseCounts& counts, std::int64_t n,
                               RarefactionCalculator& calculator);

// The average of the SQS estimates of those rows that have one: a row with a warning or fewer than
// 11 specimens has none, nor has one whose trials saw nothing (a single taxon is always thrown
// back) or whose quota is not above 0, which give NaN.
struct AverageSqs {
    std::optional<double> estimate;  // absent where no row has one
    std::int64_t censuses = 0;       // the rows that have one
    SqsAbsenceCounts lacking{};      // the other rows
};

// sqsTrials trials per row at the quota; nothing is written to the console. Each row draws from a
// generator of its own, whose seed comes from random: an estimate does not depend on the number of
// threads (0: one per processor) that share the rows.
AverageSqs averageAlroySQS(const SparseCounts& counts, double quota, RandomSource& random,
                           unsigned threads = 0);

}  // namespace zorvel
