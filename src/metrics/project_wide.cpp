#include "metrics/project_wide.h"

#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

#include "base/threads.h"
#include "metrics/saturating_sum.h"

namespace zorvel {
namespace {

constexpr std::int64_t sqsTrials = 100;

// The rows of either form of a matrix.
std::size_t rowCount(const SparseCounts& counts) {
    return counts.rows();
}
std::size_t rowCount(const CountsMatrix& matrix) {
    return matrix.size();
}
CountsView rowOf(const SparseCounts& counts, std::size_t i) {
    return counts.row(i);
}
CountsView rowOf(const CountsMatrix& matrix, std::size_t i) {
    return matrix[i];
}

template <class Counts>
AverageMetrics averagesOf(const Counts& counts) {
    SaturatingSum specimens;
    SaturatingSum taxa;
    AverageMetrics sums;
    for (std::size_t i = 0; i < rowCount(counts); ++i) {
        const CensusMetrics metrics = censusMetrics(rowOf(counts, i));
        specimens.add(metrics.individuals);
        taxa.add(metrics.richness);
        sums.chaoClassic += metrics.chaoClassic;
        sums.shannonH += metrics.shannonH;
        sums.fisherAlpha += metrics.fisherAlpha;
        sums.pielouJ += metrics.pielouJ;
        sums.simpsonD += metrics.simpsonD;
        sums.buzasE += metrics.buzasE;
    }
    const auto censuses = static_cast<double>(rowCount(counts));
    return {static_cast<double>(specimens.value()) / censuses,
            static_cast<double>(taxa.value()) / censuses,
            sums.chaoClassic / censuses,
            sums.shannonH / censuses,
            sums.fisherAlpha / censuses,
            sums.pielouJ / censuses,
            sums.simpsonD / censuses,
            sums.buzasE / censuses};
}

template <class Counts>
double rarefiedAverage(const Counts& counts, std::int64_t n, RarefactionCalculator& calculator) {
    std::vector<double> estimates(rowCount(counts));
    onThreads(estimates.size(), allThreads(), [&](std::size_t i) {
        estimates[i] = calculator.individualBasedPoint(rowOf(counts, i), n).estimate;
    });
    const double sum = std::accumulate(estimates.begin(), estimates.end(), 0.0);
    return sum / static_cast<double>(estimates.size());
}

template <class Counts>
AverageSqs sqsAverage(const Counts& counts, double quota, RandomSource& random, unsigned threads) {
    std::vector<std::uint64_t> seeds(rowCount(counts));
    for (std::uint64_t& seed : seeds) seed = random.bits64();
    std::vector<SqsResult> results(seeds.size());
    onThreads(seeds.size(), threads == 0 ? allThreads() : threads, [&](std::size_t i) {
        SeededRandom own(seeds[i]);
        results[i] = shareholderQuorum(rowOf(counts, i), sqsTrials, quota, own);
    });
    AverageSqs average;
    double sum = 0;
    for (const SqsResult& result : results) {
        if (result.absence == SqsAbsence::none) {
            sum += *result.estimate;
            ++average.censuses;
        } else {
            ++average.lacking[static_cast<std::size_t>(result.absence)];
        }
    }
    if (average.censuses > 0) average.estimate = sum / static_cast<double>(average.censuses);
    return average;
}

template <class Counts>
ProjectWideMetrics metricsOf(CountsView pooled, const Counts& counts, std::int64_t rarefactionSize,
                             double sqsQuota, RandomSource& random,
                             RarefactionCalculator& calculator) {
    ProjectWideMetrics result;
    result.pooled = censusMetrics(pooled);
    result.pooledRarefiedRichness =
        calculator.individualBasedPoint(pooled, rarefactionSize).estimate;
    result.pooledAlroySQS = alroySQS(pooled, sqsTrials, sqsQuota, random);
    result.averages = averagesOf(counts);
    result.averageRarefiedRichness = rarefiedAverage(counts, rarefactionSize, calculator);
    result.averageAlroySQS = sqsAverage(counts, sqsQuota, random, 0);
    const IncidenceSummary incidence = summariseIncidence(counts);
    result.chaoTwo = chaoTwo(incidence);
    result.sampleBasedRarefiedRichness =
        calculator.sampleBasedPoint(incidence, rarefactionSize).estimate;
    return result;
}

}  // namespace

AverageMetrics averageMetrics(const SparseCounts& counts) {
    return averagesOf(counts);
}
AverageMetrics averageMetrics(const CountsMatrix& matrix) {
    return averagesOf(matrix);
}

double averageRarefiedRichness(const SparseCounts& counts, std::int64_t n,
                               RarefactionCalculator& calculator) {
    return rarefiedAverage(counts, n, calculator);
}
double averageRarefiedRichness(const CountsMatrix& matrix, std::int64_t n,
                               RarefactionCalculator& calculator) {
    return rarefiedAverage(matrix, n, calculator);
}

AverageSqs averageAlroySQS(const SparseCounts& counts, double quota, RandomSource& random,
                           unsigned threads) {
    return sqsAverage(counts, quota, random, threads);
}
AverageSqs averageAlroySQS(const CountsMatrix& matrix, double quota, RandomSource& random,
                           unsigned threads) {
    return sqsAverage(matrix, quota, random, threads);
}

ProjectWideMetrics projectWideMetrics(CountsView pooled, const SparseCounts& counts,
                                      std::int64_t rarefactionSize, double sqsQuota,
                                      RandomSource& random, RarefactionCalculator& calculator) {
    return metricsOf(pooled, counts, rarefactionSize, sqsQuota, random, calculator);
}
ProjectWideMetrics projectWideMetrics(CountsView pooled, const CountsMatrix& matrix,
                                      std::int64_t rarefactionSize, double sqsQuota,
                                      RandomSource& random, RarefactionCalculator& calculator) {
    return metricsOf(pooled, matrix, rarefactionSize, sqsQuota, random, calculator);
}

}  // namespace zorvel
