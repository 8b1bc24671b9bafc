// zorvel-cli diversity: Hill numbers and coverage of censuses as they are, at equal size or
// coverage, as curves and as profiles, with limits.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "base/numbers.h"
#include "cli/call.h"
#include "cli/diversity.h"
#include "metrics/diversity_limits.h"
#include "model/diversity_texts.h"

namespace zorvel::cli {
namespace {

using Form = DiversityOptions::Form;

constexpr double unlimited = std::numeric_limits<double>::infinity();

struct Sample {
    std::optional<std::string> census;  // absent: all of them
    DiversityEstimator estimator;
};

std::vector<Sample> wholeProject(const Call& call, const Project& project) {
    SparseCountsResult built = buildSparseCounts(project.document->objectContext());
    std::vector<Sample> samples;
    samples.push_back(
        {std::nullopt,
         DiversityEstimator(call.samples ? incidenceFrequencies(summariseIncidence(built.counts))
                                         : abundanceFrequencies(built.pooled))});
    return samples;
}

Result<std::vector<Sample>> samplesOf(const Call& call, const Project& project) {
    if (project.censuses.empty()) return Problem{"holds no census"};
    if (call.samples || call.diversity.pooled) return wholeProject(call, project);
    std::vector<Sample> samples;
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

// --- Values with their limits ---

// A point of an order; each of its values may be absent.
struct OrderPoint {
    std::size_t order = 0;
    std::optional<DiversityPoint> at;
    std::optional<double> standardError;
    const char* reason = nullptr;  // of what is absent

    [[nodiscard]] std::optional<double> estimate() const {
        return at ? std::optional(at->diversity[order]) : std::nullopt;
    }
    [[nodiscard]] std::optional<ConfidenceLimits> limits() const {
        if (!at || !standardError) return std::nullopt;
        return normalLimits(at->diversity[order], *standardError, 0, unlimited);
    }
};

constexpr const char* fewReplicates =
    "Fewer than half of the simulated samples have this value, so there are no limits.";

BootstrapPlan planOf(const Call& call) {
    BootstrapPlan plan;
    plan.replicates = call.diversity.replicates;
    plan.seed = call.seed.value_or(1);
    return plan;
}

// Order by order, each at all places.
std::vector<OrderPoint> ordered(const std::vector<std::optional<DiversityPoint>>& places,
                                const std::vector<StandardErrors::Orders>& errors,
                                const char* reason) {
    std::vector<OrderPoint> points;
    for (std::size_t order = 0; order < kHillOrders; ++order) {
        for (std::size_t i = 0; i < places.size(); ++i) {
            OrderPoint point{order, places[i], std::nullopt, places[i] ? nullptr : reason};
            if (i < errors.size() && places[i]) {
                point.standardError = errors[i][order];
                if (!point.standardError) point.reason = fewReplicates;
            }
            points.push_back(point);
        }
    }
    return points;
}

const char* whyNot(const Sample& sample, std::optional<DiversityAbsence> absence) {
    if (!absence) return nullptr;
    return diversityAbsenceText(*absence, sample.estimator.sample().kind);
}

std::vector<OrderPoint> pointsAtSizes(const Sample& sample, const std::vector<double>& sizes,
                                      const Call& call) {
    std::vector<std::optional<DiversityPoint>> places;
    for (const double size : sizes) places.push_back(sample.estimator.atSize(size));
    BootstrapPlan plan = planOf(call);
    plan.sizes = sizes;
    const std::optional<StandardErrors> errors = bootstrapErrors(sample.estimator, plan);
    return ordered(places, errors ? errors->atSizes : std::vector<StandardErrors::Orders>(),
                   whyNot(sample, sample.estimator.estimateAbsence(0)));
}

std::vector<OrderPoint> pointsAtCoverages(const Sample& sample,
                                          const std::vector<double>& coverages, const Call& call) {
    BootstrapPlan plan = planOf(call);
    plan.coverages = coverages;
    const std::optional<StandardErrors> errors = bootstrapErrors(sample.estimator, plan);
    return ordered(sample.estimator.atCoverages(coverages),
                   errors ? errors->atCoverages : std::vector<StandardErrors::Orders>(),
                   whyNot(sample, sample.estimator.coverageAbsence(
                                      coverages.empty() ? 0 : coverages.front())));
}

std::vector<OrderPoint> curveOf(const Sample& sample, const Call& call) {
    const DiversityEstimator& estimator = sample.estimator;
    const std::vector<double> sizes =
        estimator.coverage() ? standardSizes(estimator.sample().size) : std::vector<double>{1};
    if (call.diversity.form == Form::sizeCurve || !estimator.coverage()) {
        return pointsAtSizes(sample, sizes, call);
    }
    std::vector<double> coverages;
    for (const double size : sizes) {
        const double coverage = estimator.atSize(size)->coverage;
        if (coverages.empty() || coverage > coverages.back()) coverages.push_back(coverage);
    }
    return pointsAtCoverages(sample, coverages, call);
}

struct ProfilePoint {
    double order = 0;
    std::optional<double> observed;
    std::optional<double> estimated;
    std::optional<double> standardError;
    const char* reason = nullptr;
};

std::vector<ProfilePoint> profileOf(const Sample& sample, const Call& call) {
    BootstrapPlan plan = planOf(call);
    for (int tenths = 0; tenths <= 20; ++tenths) plan.orders.push_back(tenths / 10.0);
    const std::optional<StandardErrors> errors = bootstrapErrors(sample.estimator, plan);
    std::vector<ProfilePoint> profile;
    for (std::size_t i = 0; i < plan.orders.size(); ++i) {
        const double q = plan.orders[i];
        ProfilePoint point{q, sample.estimator.observed(q), sample.estimator.estimated(q),
                           std::nullopt, whyNot(sample, sample.estimator.estimateAbsence(q))};
        if (errors && point.estimated) {
            point.standardError = errors->estimated[i];
            if (!point.standardError) point.reason = fewReplicates;
        }
        profile.push_back(point);
    }
    return profile;
}

// The coverage that all samples reach at twice their size.
std::optional<double> commonCoverage(const std::vector<Sample>& samples) {
    std::optional<double> common;
    for (const Sample& sample : samples) {
        const std::optional<double> reached = sample.estimator.coverageAtTwice();
        if (reached) common = std::min(common.value_or(1), *reached);
    }
    return common;
}

std::vector<OrderPoint> pointsOf(const Sample& sample, const std::optional<double>& coverage,
                                 const Call& call) {
    switch (call.diversity.form) {
        case Form::atSize:
            return pointsAtSizes(sample, {call.diversity.size}, call);
        case Form::atCoverage:
            return pointsAtCoverages(sample, {coverage.value_or(0)}, call);
        default:
            return curveOf(sample, call);
    }
}

// --- JSON ---

void writeOptional(JsonWriter& json, const char* name, const char* reason) {
    if (reason != nullptr) json.field(name, std::string_view(reason));
}

void writeRichness(JsonWriter& json, const char* name,
                   const std::optional<RichnessEstimate>& estimate) {
    json.key(name);
    json.begin('{');
    const auto field = [&](const char* of, double value) {
        json.field(of, estimate ? std::optional(value) : std::nullopt);
    };
    const RichnessEstimate known = estimate.value_or(RichnessEstimate());
    field("estimate", known.estimate);
    field("standardError", known.standardError);
    field("lower95", known.limits.lower95);
    field("upper95", known.limits.upper95);
    field("lower99", known.limits.lower99);
    field("upper99", known.limits.upper99);
    if (!estimate) json.field("reason", "No species is estimated to be missing.");
    json.end('}');
}

void writeChao(JsonWriter& json, const FrequencyCounts& sample) {
    const double factor = sample.size >= 1 ? (sample.size - 1) / sample.size : 0;
    if (sample.kind == SampleKind::incidence) {
        writeRichness(json, "chaoTwo", chaoEstimate(sample, ChaoForm::classic, factor));
        return;
    }
    writeRichness(json, "chaoOne", chaoEstimate(sample, ChaoForm::biasCorrected, 1));
    writeRichness(json, "chaoClassic", chaoEstimate(sample, ChaoForm::classic, 1));
    writeRichness(json, "estimatedRichness", chaoEstimate(sample, ChaoForm::classic, factor));
}

void writeSize(JsonWriter& json, const FrequencyCounts& sample) {
    if (sample.kind == SampleKind::incidence) {
        json.field("censuses", sample.size);
        json.field("incidences", sample.total);
    } else {
        json.field("individuals", sample.size);
    }
    json.field("richness", sample.taxa);
}

void writeSummary(JsonWriter& json, const Sample& sample) {
    const DiversityEstimator& estimator = sample.estimator;
    json.field("coverage", estimator.coverage());
    json.field("coverageAtTwice", estimator.coverageAtTwice());
    for (const bool observed : {true, false}) {
        json.key(observed ? "observed" : "estimated");
        json.begin('{');
        for (int q = 0; q < static_cast<int>(kHillOrders); ++q) {
            json.field("q" + std::to_string(q),
                       observed ? estimator.observed(q) : estimator.estimated(q));
        }
        json.end('}');
    }
    writeChao(json, estimator.sample());
    for (const double q : {0.0, 2.0}) {
        if (const char* reason = whyNot(sample, estimator.estimateAbsence(q))) {
            return json.field("reason", reason);
        }
    }
}

void writePoint(JsonWriter& json, const OrderPoint& point) {
    json.begin('{');
    json.field("order", static_cast<std::int64_t>(point.order));
    json.field("sampleSize", point.at ? std::optional(point.at->size) : std::nullopt);
    json.field("coverage", point.at ? std::optional(point.at->coverage) : std::nullopt);
    json.key("method");
    point.at ? json.value(std::string_view(sampleMethodName(point.at->method)))
             : json.value(std::monostate());
    json.field("beyondTwice", point.at && point.at->beyondTwice);
    json.field("estimate", point.estimate());
    json.field("standardError", point.standardError);
    const std::optional<ConfidenceLimits> limits = point.limits();
    const auto limit = [&](const char* name, double ConfidenceLimits::*which) {
        json.field(name, limits ? std::optional((*limits).*which) : std::nullopt);
    };
    limit("lower95", &ConfidenceLimits::lower95);
    limit("upper95", &ConfidenceLimits::upper95);
    limit("lower99", &ConfidenceLimits::lower99);
    limit("upper99", &ConfidenceLimits::upper99);
    writeOptional(json, "reason", point.reason);
    json.end('}');
}

void writeProfile(JsonWriter& json, const std::vector<ProfilePoint>& profile) {
    for (const ProfilePoint& point : profile) {
        json.begin('{');
        json.field("order", point.order);
        json.field("observed", point.observed);
        json.field("estimated", point.estimated);
        json.field("standardError", point.standardError);
        writeOptional(json, "reason", point.reason);
        json.end('}');
    }
}

void writeJson(const std::vector<Sample>& samples, const std::optional<double>& coverage,
               const Call& call, Output& output) {
    JsonWriter json(output);
    json.begin('[');
    for (const Sample& sample : samples) {
        json.begin('{');
        json.field("census", sample.census);
        writeSize(json, sample.estimator.sample());
        if (call.diversity.form == Form::summary) {
            writeSummary(json, sample);
        } else {
            json.key("points");
            json.begin('[');
            if (call.diversity.form == Form::profile) {
                writeProfile(json, profileOf(sample, call));
            } else {
                for (const OrderPoint& point : pointsOf(sample, coverage, call)) {
                    writePoint(json, point);
                }
            }
            json.end(']');
        }
        json.end('}');
        if (output.failed()) return;
    }
    json.end(']');
}

// --- Text: comma-separated, "-" where there is no value ---

std::string quotedName(const Sample& sample) {
    std::string name = sample.census.value_or("all censuses");
    if (name.find_first_of(",\"\r\n") == std::string::npos) return name;
    std::string quoted = "\"";
    for (const char letter : name) {
        if (letter == '"') quoted += '"';
        quoted += letter;
    }
    return quoted + '"';
}

std::string numberText(const std::optional<double>& value, int digits) {
    return value && std::isfinite(*value) ? fixedText(*value, digits) : "-";
}

std::string sizeText(const std::optional<double>& size) {
    return numberText(size, size && *size == std::floor(*size) ? 0 : 3);
}

constexpr int coverageDigits = 4;
constexpr int diversityDigits = 3;
using Line = std::vector<std::string>;

void writeLine(Output& output, const Line& cells) {
    std::string text;
    for (const std::string& cell : cells) text += (text.empty() ? "" : ",") + cell;
    output.write(text + '\n');
}

void addLimits(Line& line, const OrderPoint& point) {
    const std::optional<ConfidenceLimits> limits = point.limits();
    for (const auto which : {&ConfidenceLimits::lower95, &ConfidenceLimits::upper95,
                             &ConfidenceLimits::lower99, &ConfidenceLimits::upper99}) {
        line.push_back(
            numberText(limits ? std::optional((*limits).*which) : std::nullopt, diversityDigits));
    }
}

Line headOf(const Call& call) {
    switch (call.diversity.form) {
        case Form::summary:
            break;
        case Form::profile:
            return {"census", "order", "observed", "estimated", "standardError"};
        case Form::atSize:
        case Form::atCoverage: {
            Line head{"census", "coverage", "sampleSize", "method"};
            for (const char* q : {"q0", "q1", "q2"}) {
                head.emplace_back(q);
                for (const char* limit :
                     {"lower95limit", "upper95limit", "lower99limit", "upper99limit"}) {
                    head.push_back(std::string(q) + limit);
                }
            }
            return head;
        }
        default:
            return {"census",       "order",        "sampleSize",    "coverage",
                    "method",       "estimate",     "standardError", "lower95limit",
                    "upper95limit", "lower99limit", "upper99limit"};
    }
    Line head{"census"};
    if (call.samples) {
        head.insert(head.end(), {"censuses", "incidences"});
    } else {
        head.emplace_back("individuals");
    }
    head.insert(head.end(), {"richness", "coverage", "coverageAtTwice", "q0", "q1", "q2",
                             "q0Estimated", "q1Estimated", "q2Estimated"});
    return head;
}

Line summaryLine(const Sample& sample) {
    const DiversityEstimator& estimator = sample.estimator;
    const FrequencyCounts& counts = estimator.sample();
    Line line{quotedName(sample), sizeText(counts.size)};
    if (counts.kind == SampleKind::incidence) line.push_back(sizeText(counts.total));
    line.push_back(sizeText(counts.taxa));
    line.push_back(numberText(estimator.coverage(), coverageDigits));
    line.push_back(numberText(estimator.coverageAtTwice(), coverageDigits));
    for (const bool observed : {true, false}) {
        for (int q = 0; q < static_cast<int>(kHillOrders); ++q) {
            line.push_back(numberText(observed ? estimator.observed(q) : estimator.estimated(q),
                                      diversityDigits));
        }
    }
    return line;
}

Line placeOf(const OrderPoint& point) {
    if (!point.at) return {"-", "-", "-"};
    return {numberText(point.at->coverage, coverageDigits), sizeText(point.at->size),
            sampleMethodName(point.at->method)};
}

void writeText(const std::vector<Sample>& samples, const std::optional<double>& coverage,
               const Call& call, Output& output) {
    writeLine(output, headOf(call));
    for (const Sample& sample : samples) {
        const std::string name = quotedName(sample);
        if (call.diversity.form == Form::summary) {
            writeLine(output, summaryLine(sample));
        } else if (call.diversity.form == Form::profile) {
            for (const ProfilePoint& point : profileOf(sample, call)) {
                writeLine(output, {name, fixedText(point.order, 1),
                                   numberText(point.observed, diversityDigits),
                                   numberText(point.estimated, diversityDigits),
                                   numberText(point.standardError, diversityDigits)});
            }
        } else if (const std::vector<OrderPoint> points = pointsOf(sample, coverage, call);
                   call.diversity.form == Form::atSize || call.diversity.form == Form::atCoverage) {
            Line line{name};
            const Line place = placeOf(points.front());
            line.insert(line.end(), place.begin(), place.end());
            for (const OrderPoint& point : points) {
                line.push_back(numberText(point.estimate(), diversityDigits));
                addLimits(line, point);
            }
            writeLine(output, line);
        } else {
            for (const OrderPoint& point : points) {
                const Line place = placeOf(point);
                Line line{name,
                          std::to_string(point.order),
                          place[1],
                          place[0],
                          place[2],
                          numberText(point.estimate(), diversityDigits),
                          numberText(point.standardError, diversityDigits)};
                addLimits(line, point);
                writeLine(output, line);
            }
        }
        if (output.failed()) return;
    }
}

std::optional<Problem> runDiversity(const Call& call, Project& project, Output& output) {
    const Result<std::vector<Sample>> samples = samplesOf(call, project);
    if (!samples) return samples.problem();
    const std::optional<double> coverage =
        call.diversity.coverage ? call.diversity.coverage : commonCoverage(samples.value());
    if (call.diversity.form == Form::atCoverage && !coverage) {
        return Problem{"No census has the two specimens that coverage needs"};
    }
    if (call.json) {
        writeJson(samples.value(), coverage, call, output);
    } else {
        writeText(samples.value(), coverage, call, output);
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
