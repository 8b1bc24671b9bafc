// zorvel-cli summary: the metrics panel of one census, over its included taxa.
#include "cli/census_choice.h"
#include "cli/command.h"
#include "cli/figures.h"
#include "cli/json_writer.h"
#include "cli/messages.h"

namespace zorvel::cli {
namespace {

std::optional<Problem> runSummary(const Call& call, Project& project, Output& output) {
    if (project.censuses.empty()) return Problem{"holds no census"};
    const Result<std::size_t> chosen = chooseCensus(project.names, call.census);
    if (!chosen) return chosen.problem();
    const std::string& name = project.names[chosen.value()];
    tellConsoleLines(project.file + ": " + name + ": ");
    const CountsVector counts = includedCountsVector(project.censuses[chosen.value()]);
    const Figures figures = censusFigures(counts, call);
    if (!call.json) {
        writeLines(output, metricsPanelRows, figures, call);
        return std::nullopt;
    }
    JsonWriter json(output);
    json.beginObject();
    json.field("census", name);
    writeFields(json, figures);
    json.endObject();
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

}  // namespace zorvel::cli
