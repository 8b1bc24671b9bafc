// zorvel-cli summary, metrics and project: the metrics of one census over its included taxa, of
// every census over all its taxa, and of all censuses together.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "base/console.h"
#include "base/threads.h"
#include "cli/call.h"
#include "interchange/writers.h"
#include "metrics/metric_table.h"
#include "metrics/rarefaction.h"
#include "metrics/sqs.h"
#include "model/project_metrics.h"

namespace zorvel::cli {
namespace {

// The random numbers of one SQS estimate. With a seed each estimate starts its own sequence: it
// depends only on its counts, not on which other censuses the file holds.
std::unique_ptr<RandomSource> randomSource(const Call& call) {
    if (call.seed) return std::make_unique<SeededRandom>(*call.seed);
    return std::make_unique<SystemRandom>();
}

// SQS warnings go to the console.
MetricValues censusValues(CountsView counts, const Call& call) {
    MetricValues values = censusMetrics(counts);
    values[Metric::rarefiedRichness] =
        sharedCalculator().individualBasedPoint(counts, call.size).estimate;
    if (const auto sqs = alroySQS(counts, sqsTrials, call.quota, *randomSource(call)))
        values[Metric::alroySQS] = *sqs;
    return values;
}

void writeField(JsonWriter& json, const ShownMetric& shown, const MetricValue& value) {
    json.key(metricKey(shown));
    std::visit([&json](const auto& each) { json.value(each); }, value);
}

// An object: the name, and a member per metric of a census or of a table of censuses.
void writeCensus(JsonWriter& json, const std::string& name, const MetricValues& values) {
    json.begin('{');
    json.field("census", name);
    for (const MetricDescriptor& row : metricTable) {
        if (!row.inPanel && row.column == nullptr) continue;
        writeField(json, {MetricGroup::census, row.metric}, values[row.metric]);
    }
    json.end('}');
}

// Caption, tab and value.
void writeLine(Output& output, const ShownMetric& shown, const MetricValue& value,
               const Call& call) {
    output.write(metricCaption(shown, {call.size, call.quota}) + '\t' +
                 metricText(shown.metric, value) + '\n');
}

std::optional<Problem> runSummary(const Call& call, Project& project, Output& output) {
    if (project.censuses.empty()) return Problem{"holds no census"};
    const Result<std::size_t> chosen = chooseCensus(project.names, call.census);
    if (!chosen) return chosen.problem();
    const std::string& name = project.names[chosen.value()];
    tellConsoleLines(project.file + ": " + name + ": ");
    const MetricValues values =
        censusValues(includedCountsVector(project.censuses[chosen.value()]), call);
    if (call.json) {
        JsonWriter json(output);
        writeCensus(json, name, values);
        return std::nullopt;
    }
    for (const ShownMetric& shown : metricsOf(MetricGroup::census))
        writeLine(output, shown, values[shown.metric], call);
    return std::nullopt;
}

// Calls receive(i, compute(census i)) in the file's order, while several threads compute; warnings
// name their census. A seed serves each census alike.
template <class Compute, class Receive>
void forEachCensus(const Project& project, const Output& output, Compute compute, Receive receive) {
    constexpr std::size_t atOnce = 1024;  // so that no more than these are computed for nothing
    using Value = std::invoke_result_t<Compute&, const Census&>;
    const std::size_t count = project.censuses.size();
    for (std::size_t start = 0; start < count && !output.failed(); start += atOnce) {
        std::vector<std::pair<Value, std::vector<std::string>>> computed(
            std::min(atOnce, count - start));
        onThreads(computed.size(), allThreads(), [&](std::size_t i) {
            HeldConsoleLines warnings;
            computed[i] = {compute(project.censuses[start + i]), warnings.take()};
        });
        for (std::size_t i = 0; i < computed.size() && !output.failed(); ++i) {
            tellConsoleLines(project.file + ": " + project.names[start + i] + ": ");
            writeConsoleLines(computed[i].second);
            receive(start + i, std::move(computed[i].first));
        }
    }
}

std::optional<Problem> runMetrics(const Call& call, Project& project, Output& output) {
    if (!call.json) {
        std::vector<MetricRow> rows;
        forEachCensus(
            project, output,
            [&](const Census& census) { return metricRow(census, *randomSource(call)); },
            [&](std::size_t, const MetricRow& row) { rows.push_back(row); });
        output.write(writeMetricsTable(rows, metricColumnTitles, project.names));
        return std::nullopt;
    }
    JsonWriter json(output);
    json.begin('[');
    forEachCensus(
        project, output,
        [&](const Census& census) { return censusValues(fullCountsVector(census), call); },
        [&](std::size_t i, const MetricValues& values) {
            writeCensus(json, project.names[i], values);
        });
    json.end(']');
    return std::nullopt;
}

void writeProjectJson(const ProjectMetrics& metrics, Output& output) {
    JsonWriter json(output);
    const auto writeGroup = [&](MetricGroup group) {
        for (const auto& [shown, value] : metrics.values)
            if (shown.group == group) writeField(json, shown, value);
    };
    json.begin('{');
    writeGroup(MetricGroup::pooled);
    json.key("averages");
    json.begin('{');
    writeGroup(MetricGroup::averages);
    json.field("censusesWithAlroySQS", metrics.inputs.averageSqs.censuses);
    json.end('}');
    writeGroup(MetricGroup::incidence);
    json.end('}');
}

std::optional<Problem> runProject(const Call& call, Project& project, Output& output) {
    if (project.censuses.size() < 3) {
        return Problem{"Must have at least three censuses to calculate project-wide metrics"};
    }
    tellConsoleLines(project.file + ": ");
    SparseCountsResult built = buildSparseCounts(project.document->objectContext());
    const ProjectCounts counts{std::move(built.pooled), std::move(built.counts)};
    const std::unique_ptr<RandomSource> random = randomSource(call);
    ProjectMetrics metrics;
    metrics.inputs.parameters = {call.size, call.quota};
    for (const ProjectStep& step : projectSteps()) step.compute(counts, *random, metrics);
    if (call.json) {
        writeProjectJson(metrics, output);
        return std::nullopt;
    }
    for (const auto& [shown, value] : metrics.values) {
        writeLine(output, shown, value, call);
        if (shown == ShownMetric{MetricGroup::averages, Metric::alroySQS}) {
            output.write("Censuses with Alroy SQS\t" +
                         std::to_string(metrics.inputs.averageSqs.censuses) + '\n');
        }
    }
    return std::nullopt;
}

}  // namespace

const Command summaryCommand = {
    .name = "summary",
    .description = "The metrics of one census, over its included taxa",
    .example = "summary counts.csv --census North --size 100",
    .takesCensus = true,
    .run = runSummary,
};

const Command metricsCommand = {
    .name = "metrics",
    .description = "The metrics table of every census, over all its taxa",
    .example = "metrics counts.csv --output metrics.csv",
    .run = runMetrics,
};

const Command projectCommand = {
    .name = "project",
    .description = "The metrics of all censuses, pooled, averaged and by incidence",
    .example = "project counts.csv --json",
    .run = runProject,
};

}  // namespace zorvel::cli
