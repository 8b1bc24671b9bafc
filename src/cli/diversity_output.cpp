#include <string>
#include <vector>

#include "base/numbers.h"
#include "cli/call.h"
#include "cli/diversity.h"
#include "model/diversity_table.h"

namespace zorvel::cli {
namespace {

using Form = DiversityOptions::Form;

// --- JSON ---

// Of what may be absent.
template <class Whole, class T>
std::optional<T> memberOf(const std::optional<Whole>& whole, T Whole::*member) {
    return whole ? std::optional((*whole).*member) : std::nullopt;
}

void writeReason(JsonWriter& json, const char* reason) {
    if (reason != nullptr) json.field("reason", reason);
}

void writeLimits(JsonWriter& json, const std::optional<ConfidenceLimits>& limits) {
    json.field("lower95", memberOf(limits, &ConfidenceLimits::lower95));
    json.field("upper95", memberOf(limits, &ConfidenceLimits::upper95));
    json.field("lower99", memberOf(limits, &ConfidenceLimits::lower99));
    json.field("upper99", memberOf(limits, &ConfidenceLimits::upper99));
}

void writeRichness(JsonWriter& json, const char* name,
                   const std::optional<RichnessEstimate>& estimate) {
    json.key(name);
    json.begin('{');
    json.field("estimate", memberOf(estimate, &RichnessEstimate::estimate));
    json.field("standardError", memberOf(estimate, &RichnessEstimate::standardError));
    writeLimits(json, memberOf(estimate, &RichnessEstimate::limits));
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

void writeSummary(JsonWriter& json, const DiversitySample& sample) {
    const DiversityEstimator& estimator = sample.estimator;
    json.field("coverage", estimator.coverage());
    json.field("coverageAtTwice", estimator.coverageAtTwice());
    for (const bool observed : {true, false}) {
        json.key(observed ? "observed" : "estimated");
        json.begin('{');
        for (int q = 0; q < static_cast<int>(kHillOrders); ++q) {
            const char key[] = {'q', static_cast<char>('0' + q), '\0'};
            json.field(key, observed ? estimator.observed(q) : estimator.estimated(q));
        }
        json.end('}');
    }
    writeChao(json, estimator.sample());
    for (const double q : {0.0, 2.0}) {
        if (const char* reason = absenceReason(sample, estimator.estimateAbsence(q))) {
            return json.field("reason", reason);
        }
    }
}

void writePoint(JsonWriter& json, const OrderPoint& point) {
    json.begin('{');
    json.field("order", static_cast<std::int64_t>(point.order));
    json.field("sampleSize", memberOf(point.at, &DiversityPoint::size));
    json.field("coverage", memberOf(point.at, &DiversityPoint::coverage));
    json.key("method");
    point.at ? json.value(sampleMethodName(point.at->method)) : json.value(std::monostate());
    json.field("beyondTwice", point.at && point.at->beyondTwice);
    json.field("estimate", point.estimate());
    json.field("standardError", point.standardError);
    std::optional<ConfidenceLimits> limits;
    if (point.at && point.standardError) {
        limits = diversityLimits(*point.estimate(), *point.standardError);
    }
    writeLimits(json, limits);
    writeReason(json, point.reason);
    json.end('}');
}

void writeProfile(JsonWriter& json, const std::vector<ProfilePoint>& profile) {
    for (const ProfilePoint& point : profile) {
        json.begin('{');
        json.field("order", point.order);
        json.field("observed", point.observed);
        json.field("estimated", point.estimated);
        json.field("standardError", point.standardError);
        writeReason(json, point.reason);
        json.end('}');
    }
}

// --- Text: comma-separated, "-" where there is no value ---

TableCells headOf(const Call& call) {
    TableCells head{"census"};
    const auto add = [&head](const TableCells& titles) {
        head.insert(head.end(), titles.begin(), titles.end());
    };
    switch (call.diversity.form) {
        case Form::summary:
            add(call.samples ? TableCells{"censuses", "incidences"} : TableCells{"individuals"});
            add({"richness", "coverage", "coverageAtTwice", "q0", "q1", "q2", "q0Estimated",
                 "q1Estimated", "q2Estimated"});
            break;
        case Form::profile:
            add({"order", "observed", "estimated", "standardError"});
            break;
        case Form::atSize:
        case Form::atCoverage:
            add(diversityTitles());
            break;
        case Form::sizeCurve:
        case Form::coverageCurve:
            add({"order", "sampleSize", "coverage", "method", "estimate", "standardError",
                 "lower95limit", "upper95limit", "lower99limit", "upper99limit"});
            break;
    }
    return head;
}

TableCells summaryCells(const DiversityEstimator& estimator) {
    const FrequencyCounts& counts = estimator.sample();
    TableCells cells{sizeCell(counts.size)};
    if (counts.kind == SampleKind::incidence) cells.push_back(sizeCell(counts.total));
    cells.push_back(sizeCell(counts.taxa));
    cells.push_back(coverageCell(estimator.coverage()));
    cells.push_back(coverageCell(estimator.coverageAtTwice()));
    for (const bool observed : {true, false}) {
        for (int q = 0; q < static_cast<int>(kHillOrders); ++q) {
            cells.push_back(
                diversityCell(observed ? estimator.observed(q) : estimator.estimated(q)));
        }
    }
    return cells;
}

TableCells curveCells(const OrderPoint& point) {
    TableCells cells{std::to_string(point.order), "-", "-", "-"};
    if (point.at) {
        cells = {cells.front(), sizeCell(point.at->size), coverageCell(point.at->coverage),
                 sampleMethodName(point.at->method)};
    }
    cells.push_back(diversityCell(point.estimate()));
    cells.push_back(diversityCell(point.standardError));
    addLimitCells(cells, point.estimate(), point.standardError);
    return cells;
}

// The lines of a sample, without its name.
std::vector<TableCells> linesOf(const DiversitySample& sample,
                                const std::optional<double>& coverage, const Call& call) {
    const Form form = call.diversity.form;
    std::vector<TableCells> lines;
    if (form == Form::summary) return {summaryCells(sample.estimator)};
    if (form == Form::profile) {
        for (const ProfilePoint& point : profilePoints(sample, call)) {
            lines.push_back({fixedText(point.order, 1), diversityCell(point.observed),
                             diversityCell(point.estimated), diversityCell(point.standardError)});
        }
        return lines;
    }
    const std::vector<OrderPoint> points = orderPoints(sample, coverage, call);
    if (form == Form::atSize || form == Form::atCoverage) {
        StandardErrors::Orders errors;
        for (const OrderPoint& point : points) errors[point.order] = point.standardError;
        return {diversityCells(points.front().at, errors)};
    }
    for (const OrderPoint& point : points) lines.push_back(curveCells(point));
    return lines;
}

}  // namespace

void writeDiversityJson(const std::vector<DiversitySample>& samples,
                        const std::optional<double>& coverage, const Call& call, Output& output) {
    JsonWriter json(output);
    json.begin('[');
    for (const DiversitySample& sample : samples) {
        json.begin('{');
        json.field("census", sample.census);
        writeSize(json, sample.estimator.sample());
        if (call.diversity.form == Form::summary) {
            writeSummary(json, sample);
        } else {
            json.key("points");
            json.begin('[');
            if (call.diversity.form == Form::profile) {
                writeProfile(json, profilePoints(sample, call));
            } else {
                for (const OrderPoint& point : orderPoints(sample, coverage, call)) {
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

void writeDiversityText(const std::vector<DiversitySample>& samples,
                        const std::optional<double>& coverage, const Call& call, Output& output) {
    output.write(tableLine(headOf(call)));
    for (const DiversitySample& sample : samples) {
        for (TableCells& cells : linesOf(sample, coverage, call)) {
            cells.insert(cells.begin(), sample.census.value_or("all censuses"));
            output.write(tableLine(cells));
        }
        if (output.failed()) return;
    }
}

}  // namespace zorvel::cli
