// zorvel-cli diversity: Hill numbers and coverage of censuses as they are, at equal size or
// coverage, as curves and as profiles, with limits.
#include <CLI/CLI.hpp>

#include <string>
#include <utility>
#include <vector>

#include "base/numbers.h"
#include "cli/call.h"
#include "cli/diversity.h"
#include "model/diversity_table.h"

namespace zorvel::cli {
namespace {

using Form = DiversityOptions::Form;

std::vector<DiversitySample> wholeProject(const Call& call, const Project& project) {
    SparseCountsResult built = buildSparseCounts(project.document->objectContext());
    std::vector<DiversitySample> samples;
    samples.push_back(
        {std::nullopt,
         DiversityEstimator(call.samples ? incidenceFrequencies(summariseIncidence(built.counts))
                                         : abundanceFrequencies(built.pooled))});
    return samples;
}

Result<std::vector<DiversitySample>> samplesOf(const Call& call, const Project& project) {
    if (project.censuses.empty()) return Problem{"holds no census"};
    if (call.samples || call.diversity.pooled) return wholeProject(call, project);
    std::vector<DiversitySample> samples;
    const auto add = [&](std::size_t i) {
        const CountsVector counts = includedCountsVector(project.censuses[i]);
        samples.push_back({project.names[i], DiversityEstimator(abundanceFrequencies(counts))});
    };
    if (call.census) {
        const Result<std::size_t> chosen = chooseCensus(project.names, call.census);
        if (!chosen) return chosen.problem();
        add(chosen.value());
    } else {
        for (std::size_t i = 0; i < project.censuses.size(); ++i) add(i);
    }
    return samples;
}

std::optional<Problem> runDiversity(const Call& call, Project& project, Output& output) {
    const Result<std::vector<DiversitySample>> samples = samplesOf(call, project);
    if (!samples) return samples.problem();
    std::optional<double> coverage = call.diversity.coverage;
    if (!coverage) {
        const std::optional<CommonCoverage> common = commonCoverage(samples.value());
        if (common) coverage = common->coverage;
    }
    if (call.diversity.form == Form::atCoverage && !coverage) {
        return Problem{noCommonCoverage};
    }
    if (call.json) {
        writeDiversityJson(samples.value(), coverage, call, output);
    } else {
        writeDiversityText(samples.value(), coverage, call, output);
    }
    return std::nullopt;
}

double readNumber(const char* option, const std::string& text, double least, double most,
                  const char* meaning) {
    const std::optional<double> value = parseWholeDouble(text);
    if (!value || !(*value >= least && *value <= most)) {
        throw CLI::ValidationError(option, "'" + text + "' is not " + meaning);
    }
    return *value;
}

}  // namespace

void addDiversityOptions(CLI::App& app, DiversityOptions& options) {
    const auto choose = [&options](const char* option, Form form) {
        if (options.form != Form::summary && options.form != form) {
            throw CLI::ValidationError(
                option, "only one of --at-size, --at-coverage, --curve and --profile");
        }
        options.form = form;
    };
    app.add_option_function<std::string>(
           "--at-coverage",
           [&options, choose](const std::string& text) {
               choose("--at-coverage", Form::atCoverage);
               if (text == "common") return;
               options.coverage =
                   readNumber("--at-coverage", text, 0, 1, "common or a number from 0 to 1");
           },
           "Diversity at a coverage from 0 to 1, or at the one that all\n"
           "censuses reach at twice their size: common")
        ->type_name("C");
    app.add_option_function<std::string>(
           "--at-size",
           [&options, choose](const std::string& text) {
               choose("--at-size", Form::atSize);
               options.size = readNumber("--at-size", text, 1, 1e18, "a number from 1 to 10^18");
           },
           "Diversity of so many specimens, or censuses with --samples")
        ->type_name("M");
    app.add_option_function<std::string>(
           "--curve",
           [choose](const std::string& text) {
               if (text != "size" && text != "coverage") {
                   throw CLI::ValidationError("--curve",
                                              "'" + text + "' is neither size nor coverage");
               }
               choose("--curve", text == "size" ? Form::sizeCurve : Form::coverageCurve);
           },
           "A curve up to twice the size; its limits are those at equal\n"
           "size or at equal coverage")
        ->type_name("size|coverage");
    app.add_flag_callback(
        "--profile", [choose] { choose("--profile", Form::profile); },
        "Observed and estimated diversity of the orders 0 to 2");
    app.add_flag("--pooled", options.pooled,
                 "All censuses pooled as one; like --samples, with the\n"
                 "species that are not included");
    app.add_option_function<std::string>(
           "--replicates",
           [&options](const std::string& text) {
               const std::optional<std::int64_t> replicates = parseWholeInteger(text);
               if (!replicates || *replicates < 0 || *replicates > 1'000'000) {
                   throw CLI::ValidationError(
                       "--replicates", "'" + text + "' is not a whole number from 0 to 1000000");
               }
               options.replicates = *replicates;
           },
           "Simulated samples for standard errors and limits (default\n"
           "200; 0: none)")
        ->type_name("B");
}

const Command diversityCommand = {
    .name = "diversity",
    .description = "Hill numbers and coverage, at equal size or coverage",
    .example = "diversity counts.csv --at-coverage common",
    .takesCensus = true,
    .takesSamples = true,
    .takesDiversity = true,
    .run = runDiversity,
};

}  // namespace zorvel::cli