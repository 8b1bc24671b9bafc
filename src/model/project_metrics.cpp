#include "model/project_metrics.h"

#include "metrics/project_wide.h"
#include "metrics/rarefaction.h"
#include "metrics/sqs.h"

namespace zorvel {
namespace {

// The metrics that follow from the counts only.
void addComputed(MetricGroup group, const MetricValues& values, ProjectMetrics& metrics) {
    for (const ShownMetric& shown : metricsOf(group)) {
        if (descriptorOf(shown.metric).compute == nullptr) continue;
        metrics.values.emplace_back(shown, values[shown.metric]);
    }
}

void add(MetricGroup group, Metric metric, const std::optional<double>& value,
         ProjectMetrics& metrics) {
    metrics.values.emplace_back(ShownMetric{group, metric},
                                value ? MetricValue(*value) : MetricValue());
}

constexpr ProjectStep steps[] = {
    {MetricGroup::pooled,
     [](const ProjectCounts& counts, RandomSource&, ProjectMetrics& metrics) {
         const AbundanceTally tally(*counts.countsVector);
         metrics.inputs.sample = SampleInputs(tally);
         addComputed(MetricGroup::pooled, censusMetrics(tally), metrics);
     }},
    {MetricGroup::pooled,
     [](const ProjectCounts& counts, RandomSource&, ProjectMetrics& metrics) {
         const std::int64_t size = metrics.inputs.parameters.size;
         add(MetricGroup::pooled, Metric::rarefiedRichness,
             sharedCalculator().individualBasedPoint(*counts.countsVector, size).estimate, metrics);
     }},
    {MetricGroup::pooled,
     [](const ProjectCounts& counts, RandomSource& random, ProjectMetrics& metrics) {
         const double quota = metrics.inputs.parameters.quota;
         metrics.inputs.sqs = shareholderQuorum(*counts.countsVector, sqsTrials, quota, random);
         metrics.inputs.sqs.writeWarning();
         add(MetricGroup::pooled, Metric::alroySQS, metrics.inputs.sqs.estimate, metrics);
     }},
    {MetricGroup::averages,
     [](const ProjectCounts& counts, RandomSource&, ProjectMetrics& metrics) {
         countCensuses(*counts.countsMatrix, metrics.inputs);
         addComputed(MetricGroup::averages, averageMetrics(*counts.countsMatrix), metrics);
     }},
    {MetricGroup::averages,
     [](const ProjectCounts& counts, RandomSource&, ProjectMetrics& metrics) {
         const std::int64_t size = metrics.inputs.parameters.size;
         add(MetricGroup::averages, Metric::rarefiedRichness,
             averageRarefiedRichness(*counts.countsMatrix, size, sharedCalculator()), metrics);
     }},
    {MetricGroup::averages,
     [](const ProjectCounts& counts, RandomSource& random, ProjectMetrics& metrics) {
         const double quota = metrics.inputs.parameters.quota;
         metrics.inputs.averageSqs = averageAlroySQS(*counts.countsMatrix, quota, random);
         add(MetricGroup::averages, Metric::alroySQS, metrics.inputs.averageSqs.estimate, metrics);
     }},
    {MetricGroup::incidence,
     [](const ProjectCounts& counts, RandomSource&, ProjectMetrics& metrics) {
         const IncidenceSummary summary = summariseIncidence(*counts.countsMatrix);
         const std::int64_t size = metrics.inputs.parameters.size;
         add(MetricGroup::incidence, Metric::chaoTwo, chaoTwo(summary), metrics);
         add(MetricGroup::incidence, Metric::sampleBasedRarefiedRichness,
             sharedCalculator().sampleBasedPoint(summary, size).estimate, metrics);
         metrics.inputs.incidence = summary;
     }},
};

}  // namespace

std::span<const ProjectStep> projectSteps() {
    return steps;
}

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
