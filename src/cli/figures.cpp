#include "cli/figures.h"

#include <algorithm>
#include <string>

#include "base/numbers.h"
#include "metrics/census_metrics.h"
#include "metrics/rarefaction.h"
#include "metrics/sqs.h"

namespace zorvel::cli {
namespace {

constexpr std::int64_t sqsTrials = 100;

std::string figureText(const Figure& figure, int digits) {
    if (const auto* whole = std::get_if<std::int64_t>(&figure)) return integerText(*whole);
    if (const auto* number = std::get_if<double>(&figure)) return formatMetric(*number, digits);
    return "-";
}

}  // namespace

std::unique_ptr<RandomSource> randomSource(const Call& call) {
    if (call.seed) return std::make_unique<SeededRandom>(*call.seed);
    return std::make_unique<SystemRandom>();
}

Figures censusFigures(CountsView counts, const Call& call) {
    const CensusMetrics metrics = censusMetrics(counts);
    const Rarefaction point = sharedCalculator().individualBasedPoint(counts, call.size);
    const auto random = randomSource(call);
    const std::optional<double> sqs = alroySQS(counts, sqsTrials, call.quota, *random);
    return {{"individuals", metrics.individuals},
            {"richness", metrics.richness},
            {"rarefiedRichness", point.estimate},
            {"chaoOne", metrics.chaoOne},
            {"chaoClassic", metrics.chaoClassic},
            {"alroySQS", sqs ? Figure(*sqs) : Figure()},
            {"shannonH", metrics.shannonH},
            {"fisherAlpha", metrics.fisherAlpha},
            {"pielouJ", metrics.pielouJ},
            {"simpsonD", metrics.simpsonD},
            {"buzasE", metrics.buzasE}};
}

void writeFields(JsonWriter& json, const Figures& figures) {
    for (const NamedFigure& figure : figures) {
        json.key(figure.key);
        if (const auto* whole = std::get_if<std::int64_t>(&figure.value)) {
            json.integer(*whole);
        } else if (const auto* number = std::get_if<double>(&figure.value)) {
            json.number(*number);
        } else {
            json.null();
        }
    }
}

void writeLines(Output& output, std::span<const MetricCaption> rows, const Figures& figures,
                const Call& call) {
    for (const MetricCaption& row : rows) {
        const auto found =
            std::find_if(figures.begin(), figures.end(),
                         [&row](const NamedFigure& figure) { return figure.key == row.key; });
        const Figure figure = found == figures.end() ? Figure() : found->value;
        output.write(metricCaption(row, call.size, call.quota) + "\t" +
                     figureText(figure, row.digits) + "\n");
    }
}

}  // namespace zorvel::cli
