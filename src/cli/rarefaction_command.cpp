// zorvel-cli rarefaction: the rarefaction table of one census, or over the censuses.
#include <utility>

#include "cli/call.h"
#include "interchange/writers.h"
#include "metrics/census_metrics.h"
#include "metrics/rarefaction.h"

namespace zorvel::cli {
namespace {

using Curve = std::vector<Rarefaction>;

Result<Curve> individualBased(const Call& call, const Project& project) {
    if (project.censuses.empty()) {
        return Problem{"Must have at least one census to calculate individual-based rarefaction"};
    }
    const Result<std::size_t> chosen = chooseCensus(project.names, call.census);
    if (!chosen) return chosen.problem();
    const CountsVector counts = includedCountsVector(project.censuses[chosen.value()]);
    if (individuals(counts) > RarefactionCalculator::kMostIndividuals) {
        return Problem{"There are more than 10^18 specimens, too many to rarefy exactly"};
    }
    return sharedCalculator().individualBasedCurve(counts);
}

Result<Curve> sampleBased(const Project& project) {
    if (project.censuses.size() < 5) {
        return Problem{"Must have at least five censuses to calculate sample-based rarefaction"};
    }
    const SparseCountsResult built = buildSparseCounts(project.document->objectContext());
    return sharedCalculator().sampleBasedCurve(summariseIncidence(built.counts));
}

void writeJson(const Curve& curve, Output& output) {
    JsonWriter json(output);
    json.begin('[');
    for (const Rarefaction& point : curve) {
        json.begin('{');
        json.field("sampleSize", point.sampleSize);
        json.field("estimate", point.estimate);
        json.field("variance", point.variance);
        json.field("lower95", point.lower95);
        json.field("upper95", point.upper95);
        json.field("lower99", point.lower99);
        json.field("upper99", point.upper99);
        json.end('}');
    }
    json.end(']');
}

std::optional<Problem> runRarefaction(const Call& call, Project& project, Output& output) {
    const Result<Curve> curve =
        call.samples ? sampleBased(project) : individualBased(call, project);
    if (!curve) return curve.problem();
    if (call.json) {
        writeJson(curve.value(), output);
    } else {
        output.write(writeRarefactionTable(curve.value()));
    }
    return std::nullopt;
}

}  // namespace

const Command rarefactionCommand = {
    .name = "rarefaction",
    .description = "The rarefaction table of a census, or over the censuses",
    .example = "rarefaction counts.csv --samples",
    .takesCensus = true,
    .takesSamples = true,
    .run = runRarefaction,
};

}  // namespace zorvel::cli
