#include "model/metrics_table.h"

#include "metrics/census_metrics.h"
#include "metrics/sqs.h"

namespace zorvel {
namespace {

constexpr std::int64_t tableTrials = 100;
constexpr double tableQuota = 0.8;

MetricRow metricRow(const CountsVector& counts, RandomSource& random) {
    const CensusMetrics metrics = censusMetrics(counts);
    return {static_cast<double>(metrics.individuals),
            static_cast<double>(metrics.richness),
            metrics.chaoClassic,
            alroySQS(counts, tableTrials, tableQuota, random).value_or(0.0),
            metrics.shannonH,
            metrics.fisherAlpha,
            metrics.pielouJ,
            metrics.simpsonD,
            metrics.buzasE};
}

MetricsTable tableWithoutRows(const std::vector<Census>& censuses) {
    MetricsTable table;
    table.columnTitles.assign(metricColumnTitles.begin(), metricColumnTitles.end());
    table.censusNames = censusNameList(censuses);
    table.rows.reserve(censuses.size());
    return table;
}

}  // namespace

MetricsTable buildMetricsTable(const std::vector<Census>& censuses, RandomSource& random) {
    MetricsTable table = tableWithoutRows(censuses);
    for (const Census& census : censuses) {
        table.rows.push_back(metricRow(fullCountsVector(census), random));
    }
    return table;
}

std::optional<MetricsTable> buildMetricsTable(const std::vector<Census>& censuses,
                                              const RandomSourceMaker& makeRandom,
                                              const std::function<bool()>& goesOn) {
    MetricsTable table = tableWithoutRows(censuses);
    for (const Census& census : censuses) {
        if (!goesOn()) return std::nullopt;
        table.rows.push_back(metricRow(fullCountsVector(census), *makeRandom()));
    }
    return table;
}

}  // namespace zorvel
