#include "metrics/project_wide.h"

#include <cstddef>
#include <numeric>
#include <variant>
#include <vector>

#include "base/threads.h"
#include "metrics/counts.h"

namespace zorvel {

MetricValues averageMetrics(const SparseCounts& counts) {
    std::vector<MetricValues> censuses;
    for (std::size_t i = 0; i < counts.rows(); ++i)
        censuses.push_back(censusMetrics(counts.row(i)));
    MetricValues averages;
    for (const auto& [group, metric] : metricsOf(MetricGroup::averages)) {
        if (descriptorOf(metric).compute == nullptr) continue;
        SaturatingSum wholes;
        double sum = 0;
        for (const MetricValues& census : censuses) {
            if (const auto* whole = std::get_if<std::int64_t>(&census[metric])) {
                wholes.add(*whole);
            } else {
                sum += census.number(metric);
            }
        }
        averages[metric] =
            (sum + static_cast<double>(wholes.value())) / static_cast<double>(censuses.size());
    }
    return averages;
}

double averageRarefiedRichness(const SparseCounts& counts, std::int64_t n,
                               RarefactionCalculator& calculator) {
    std::vector<double> estimates(counts.rows());
    onThreads(estimates.size(), allThreads(), [&](std::size_t i) {
        estimates[i] = calculator.individualBasedPoint(counts.row(i), n).estimate;
    });
    const double sum = std::accumulate(estimates.begin(), estimates.end(), 0.0);
    return sum / static_cast<double>(estimates.size());
}

AverageSqs averageAlroySQS(const SparseCounts& counts, double quota, RandomSource& random,
                           unsigned threads) {
    std::vector<std::uint64_t> seeds(counts.rows());
    for (std::uint64_t& seed : seeds) seed = random.bits64();
    std::vector<SqsResult> results(seeds.size());
    onThreads(seeds.size(), threads == 0 ? allThreads() : threads, [&](std::size_t i) {
        SeededRandom own(seeds[i]);
        results[i] = shareholderQuorum(counts.row(i), sqsTrials, quota, own);
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

}  // namespace zorvel
