// zorvel-cli project: the metrics of all censuses together.
#include <array>
#include <optional>

#include "cli/command.h"
#include "cli/figures.h"
#include "cli/json_writer.h"
#include "cli/messages.h"
#include "metrics/project_wide.h"

namespace zorvel::cli {
namespace {

// Below the rows that the windows show too.
constexpr std::array<MetricCaption, 1> censusesOfAverageRows = {
    {{"censusesWithAlroySQS", "Censuses with Alroy SQS", wholeNumber}}};

ProjectWideMetrics compute(const Call& call, const Project& project) {
    const SparseCountsResult built = buildSparseCounts(project.document->objectContext());
    return projectWideMetrics(built.pooled, built.counts, call.size, call.quota,
                              *randomSource(call), sharedCalculator());
}

Figure figureOf(const std::optional<double>& value) {
    return value ? Figure(*value) : Figure();
}

Figures pooledFigures(const ProjectWideMetrics& metrics) {
    const CensusMetrics& pooled = metrics.pooled;
    return {{"individuals", pooled.individuals},
            {"richness", pooled.richness},
            {"chaoClassic", pooled.chaoClassic},
            {"shannonH", pooled.shannonH},
            {"fisherAlpha", pooled.fisherAlpha},
            {"pielouJ", pooled.pielouJ},
            {"simpsonD", pooled.simpsonD},
            {"buzasE", pooled.buzasE},
            {"rarefiedRichness", metrics.pooledRarefiedRichness},
            {"alroySQS", figureOf(metrics.pooledAlroySQS)}};
}

Figures averageFigures(const ProjectWideMetrics& metrics) {
    const AverageMetrics& averages = metrics.averages;
    return {{"individuals", averages.abundance},
            {"richness", averages.richness},
            {"chaoClassic", averages.chaoClassic},
            {"shannonH", averages.shannonH},
            {"fisherAlpha", averages.fisherAlpha},
            {"pielouJ", averages.pielouJ},
            {"simpsonD", averages.simpsonD},
            {"buzasE", averages.buzasE},
            {"averageRarefiedRichness", metrics.averageRarefiedRichness},
            {"averageAlroySQS", figureOf(metrics.averageAlroySQS.estimate)},
            {"censusesWithAlroySQS", metrics.averageAlroySQS.censuses}};
}

Figures incidenceFigures(const ProjectWideMetrics& metrics) {
    return {{"chaoTwo", metrics.chaoTwo},
            {"sampleBasedRarefiedRichness", metrics.sampleBasedRarefiedRichness}};
}

void writeJson(const ProjectWideMetrics& metrics, Output& output) {
    JsonWriter json(output);
    json.beginObject();
    writeFields(json, pooledFigures(metrics));
    json.key("averages");
    json.beginObject();
    writeFields(json, averageFigures(metrics));
    json.endObject();
    writeFields(json, incidenceFigures(metrics));
    json.endObject();
}

std::optional<Problem> runProject(const Call& call, Project& project, Output& output) {
    if (project.censuses.size() < 3) {
        return Problem{"Must have at least three censuses to calculate project-wide metrics"};
    }
    tellConsoleLines(project.file + ": ");
    const ProjectWideMetrics metrics = compute(call, project);
    if (call.json) {
        writeJson(metrics, output);
        return std::nullopt;
    }
    writeLines(output, pooledMetricRows, pooledFigures(metrics), call);
    writeLines(output, averageMetricRows, averageFigures(metrics), call);
    writeLines(output, censusesOfAverageRows, averageFigures(metrics), call);
    writeLines(output, incidenceMetricRows, incidenceFigures(metrics), call);
    return std::nullopt;
}

}  // namespace

const Command projectCommand = {
    .name = "project",
    .description = "The metrics of all censuses, pooled, averaged and by incidence",
    .example = "project counts.csv --json",
    .run = runProject,
};

}  // namespace zorvel::cli
