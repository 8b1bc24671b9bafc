#include "model/metrics_table.h"

#include "metrics/sqs.h"

namespace zorvel {
MetricRow metricRow(const Census& census, RandomSource& random) {
    constexpr double quota = 0.8;
    const CountsVector counts = fullCountsVector(census);
    MetricValues values = censusMetrics(counts);
    values[Metric::alroySQS] = alroySQS(counts, sqsTrials, quota, random).value_or(0.0);
    MetricRow row;
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = values.number(metricColumns[i]);
    return row;
}

std::optional<MetricsTable> buildMetricsTable(const std::vector<Census>& censuses,
                                              const RandomSourceMaker& makeRandom,
                                              const std::function<bool()>& goesOn) {
    MetricsTable table;
    table.columnTitles.assign(metricColumnTitles.begin(), metricColumnTitles.end());
    table.censusNames = censusNameList(censuses);
    for (const Census& census : censuses) {
        if (!goesOn()) return std::nullopt;
        table.rows.push_back(metricRow(census, *makeRandom()));
    }
    return table;
}

}  // namespace zorvel
