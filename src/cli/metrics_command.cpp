// zorvel-cli metrics: the metrics of every census, over all its taxa.
#include <utility>

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
    MetricsTable table = buildMetricsTable({}, *randomSource(call));
    for (std::size_t i = 0; i < project.censuses.size(); ++i) {
        nameInWarnings(project, i);
        MetricsTable one = buildMetricsTable({project.censuses[i]}, *randomSource(call));
        table.rows.push_back(one.rows.front());
        table.censusNames.push_back(std::move(one.censusNames.front()));
    }
    output.write(writeMetricsTable(table.rows, table.columnTitles, table.censusNames));
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

std::optional<Problem> run(const Call& call, Project& project, Output& output) {
    (call.json ? writeJson : writeText)(call, project, output);
    return std::nullopt;
}

}  // namespace

const Command metricsCommand = {
    .name = "metrics",
    .description = "The metrics table of every census, over all its taxa",
    .example = "metrics counts.csv --output metrics.csv",
    .run = run,
};

}  // namespace zorvel::cli
