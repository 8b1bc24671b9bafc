#include "ui/analysis/project_wide_steps.h"

#include <utility>

#include "base/console.h"
#include "base/numbers.h"
#include "metrics/census_metrics.h"
#include "metrics/incidence.h"
#include "metrics/project_wide.h"
#include "metrics/rarefaction.h"
#include "metrics/sqs.h"
#include "ui/analysis/project_wide_rows.h"

namespace zorvel {
namespace {

constexpr std::int64_t sqsTrials = 100;

bool hasVector(const ProjectWideInputs& inputs) {
    return inputs.countsVector.has_value();
}
bool hasMatrix(const ProjectWideInputs& inputs) {
    return inputs.countsMatrix.has_value();
}

// The values of consecutive rows, with the decimals of each.
std::vector<std::optional<std::string>> textsFrom(std::size_t row,
                                                  const std::vector<double>& values) {
    std::vector<std::optional<std::string>> texts;
    for (const double value : values) {
        texts.emplace_back(formatMetric(value, projectWideRows()[row++].metric.digits));
    }
    return texts;
}

constexpr std::size_t wholeRows = 2;  // of the pooled group: integers of any size

ProjectWideResult pooledMetrics(const ProjectWideTask& task, ProjectMetricInputs explained) {
    const CountsVector& counts = *task.inputs->countsVector;
    const CensusMetrics metrics = censusMetrics(counts);
    explained.pooled = metricInputs(counts, task.size, task.quota);
    ProjectWideResult result{
        textsFrom(wholeRows, {metrics.chaoClassic, metrics.shannonH, metrics.fisherAlpha,
                              metrics.pielouJ, metrics.simpsonD, metrics.buzasE}),
        explained};
    result.texts.insert(result.texts.begin(),
                        {integerText(metrics.individuals), integerText(metrics.richness)});
    return result;
}

constexpr std::size_t pooledRarefiedRow = 8;
constexpr std::size_t pooledSqsRow = 9;

ProjectWideResult pooledRarefied(const ProjectWideTask& task, ProjectMetricInputs explained) {
    const double estimate =
        sharedCalculator().individualBasedPoint(*task.inputs->countsVector, task.size).estimate;
    return {textsFrom(pooledRarefiedRow, {estimate}), explained};
}

ProjectWideResult pooledSqs(const ProjectWideTask& task, ProjectMetricInputs explained) {
    const SqsResult sqs =
        shareholderQuorum(*task.inputs->countsVector, sqsTrials, task.quota, *task.random);
    if (const std::string line = sqs.warning(); !line.empty()) writeConsoleLine(line);
    explained.pooled.absence = sqs.absence;
    explained.pooled.coverage = sqs.frequencySum;
    if (!sqs.estimate) return {{std::nullopt}, explained};
    return {textsFrom(pooledSqsRow, {*sqs.estimate}), explained};
}

constexpr std::size_t averagesRow = 10;
constexpr std::size_t averageRarefiedRow = 18;
constexpr std::size_t averageSqsRow = 19;

ProjectWideResult averages(const ProjectWideTask& task, ProjectMetricInputs explained) {
    const SparseCounts& counts = *task.inputs->countsMatrix;
    const AverageMetrics mean = averageMetrics(counts);
    // There may be no pooled counts that brought them.
    explained.pooled.sampleSize = task.size;
    explained.pooled.quota = task.quota;
    countCensuses(counts, explained);
    return {textsFrom(averagesRow, {mean.abundance, mean.richness, mean.chaoClassic, mean.shannonH,
                                    mean.fisherAlpha, mean.pielouJ, mean.simpsonD, mean.buzasE}),
            explained};
}

ProjectWideResult averageRarefied(const ProjectWideTask& task, ProjectMetricInputs explained) {
    const double mean =
        averageRarefiedRichness(*task.inputs->countsMatrix, task.size, sharedCalculator());
    return {textsFrom(averageRarefiedRow, {mean}), explained};
}

ProjectWideResult averageSqs(const ProjectWideTask& task, ProjectMetricInputs explained) {
    const AverageSqs mean = averageAlroySQS(*task.inputs->countsMatrix, task.quota, *task.random);
    explained.withSqs = mean.censuses;
    explained.withoutSqs = mean.lacking;
    if (!mean.estimate) return {{std::nullopt}, explained};
    return {textsFrom(averageSqsRow, {*mean.estimate}), explained};
}

constexpr std::size_t incidenceRow = 20;

ProjectWideResult incidence(const ProjectWideTask& task, ProjectMetricInputs explained) {
    const IncidenceSummary summary = summariseIncidence(*task.inputs->countsMatrix);
    takeIncidence(summary, explained);
    const double richness = sharedCalculator().sampleBasedPoint(summary, task.size).estimate;
    return {textsFrom(incidenceRow, {chaoTwo(summary), richness}), explained};
}

}  // namespace

const std::vector<ProjectWideStep>& projectWideSteps() {
    static const std::vector<ProjectWideStep> steps = {
        {0, 8, hasVector, pooledMetrics},
        {pooledRarefiedRow, 1, hasVector, pooledRarefied},
        {pooledSqsRow, 1, hasVector, pooledSqs},
        {averagesRow, 8, hasMatrix, averages},
        {averageRarefiedRow, 1, hasMatrix, averageRarefied},
        {averageSqsRow, 1, hasMatrix, averageSqs},
        {incidenceRow, 2, hasMatrix, incidence},
    };
    return steps;
}

}  // namespace zorvel
