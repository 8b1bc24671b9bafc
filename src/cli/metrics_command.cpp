// zorvel-cli metrics: the metrics of every census, over all its taxa.
#include <algorithm>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/console.h"
#include "base/threads.h"
#include "cli/command.h"
#include "cli/figures.h"
#include "cli/json_writer.h"
#include "cli/messages.h"
#include "interchange/writers.h"
#include "model/metrics_table.h"

namespace zorvel::cli {
namespace {

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

void writeText(const Call& call, const Project& project, Output& output) {
    std::vector<MetricRow> rows;
    forEachCensus(
        project, output,
        [&](const Census& census) {
            return buildMetricsTable({census}, *randomSource(call)).rows.front();
        },
        [&](std::size_t, const MetricRow& row) { rows.push_back(row); });
    output.write(writeMetricsTable(rows, metricColumnTitles, project.names));
}

void writeJson(const Call& call, const Project& project, Output& output) {
    JsonWriter json(output);
    json.beginArray();
    forEachCensus(
        project, output,
        [&](const Census& census) { return censusFigures(fullCountsVector(census), call); },
        [&](std::size_t i, const Figures& figures) {
            json.beginObject();
            json.field("census", project.names[i]);
            writeFields(json, figures);
            json.endObject();
        });
    json.endArray();
}

std::optional<Problem> runMetrics(const Call& call, Project& project, Output& output) {
    (call.json ? writeJson : writeText)(call, project, output);
    return std::nullopt;
}

}  // namespace

const Command metricsCommand = {
    .name = "metrics",
    .description = "The metrics table of every census, over all its taxa",
    .example = "metrics counts.csv --output metrics.csv",
    .run = runMetrics,
};

}  // namespace zorvel::cli
