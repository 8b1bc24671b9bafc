#include "metrics/project_wide.h"

#include "metrics/saturating_sum.h"
#include "metrics/sqs.h"

namespace zorvel {

AverageMetrics averageMetrics(const CountsMatrix& matrix) {
    SaturatingSum specimens;
    SaturatingSum taxa;
    AverageMetrics sums;
    for (const CountsVector& row : matrix) {
        const CensusMetrics metrics = censusMetrics(row);
        specimens.add(metrics.individuals);
        taxa.add(metrics.richness);
        sums.chaoClassic += metrics.chaoClassic;
        sums.shannonH += metrics.shannonH;
        sums.fisherAlpha += metrics.fisherAlpha;
        sums.pielouJ += metrics.pielouJ;
        sums.simpsonD += metrics.simpsonD;
        sums.buzasE += metrics.buzasE;
    }
    const auto censuses = static_cast<double>(matrix.size());
    return {static_cast<double>(specimens.value()) / censuses,
            static_cast<double>(taxa.value()) / censuses,
            sums.chaoClassic / censuses,
            sums.shannonH / censuses,
            sums.fisherAlpha / censuses,
            sums.pielouJ / censuses,
            sums.simpsonD / censuses,
            sums.buzasE / censuses};
}

ProjectWideMetrics projectWideMetrics(CountsView pooled, const CountsMatrix& matrix,
                                      std::int64_t rarefactionSize, double sqsQuota,
                                      RandomSource& random, RarefactionCalculator& calculator) {
    constexpr std::int64_t sqsTrials = 100;
    ProjectWideMetrics result;
    result.pooled = censusMetrics(pooled);
    result.pooledRarefiedRichness =
        calculator.individualBasedPoint(pooled, rarefactionSize).estimate;
    result.pooledAlroySQS = alroySQS(pooled, sqsTrials, sqsQuota, random);
    result.averages = averageMetrics(matrix);
    result.chaoTwo = chaoTwo(matrix);
    result.sampleBasedRarefiedRichness =
        calculator.sampleBasedPoint(matrix, rarefactionSize).estimate;
    return result;
}

}  // namespace zorvel
