// zorvel-cli metrics: the metrics of every census, over all its taxa.
#include <vector>

#include "cli/command.h"
#include "cli/figures.h"
#include "cli/json_writer.h"
#include "cli/messages.h"
#include "interchange/writers.h"
#include "model/metrics_table.h"

namespace zorvel::cli {
namespace {

void nameInWarnings(const Project& project, std::size_t census) {
    tellConsoleLines(project.file + ": " + project.names[census] + ": ");
}

// Census by census, so that warnings name the census and a seed serves each alike.
void writeText(const Call& call, const Project& project, Output& output) {
    std::vector<MetricRow> rows;
    for (std::size_t i = 0; i < project.censuses.size(); ++i) {
        nameInWarnings(project, i);
        rows.push_back(buildMetricsTable({project.censuses[i]}, *randomSource(call)).rows.front());
    }
    output.write(writeMetricsTable(rows, metricColumnTitles, project.names));
}

void writeJson(const Call& call, const Project& project, Output& output) {
    JsonWriter json(output);
    json.beginArray();
    for (std::size_t i = 0; i < project.censuses.size() && !output.failed(); ++i) {
        nameInWarnings(project, i);
        json.beginObject();
        json.field("census", project.names[i]);
        writeFields(json, censusFigures(fullCountsVector(project.censuses[i]), call));
        json.endObject();
    }
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
