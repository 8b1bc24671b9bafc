#include "model/diversity_table.h"

#include <cmath>
#include <limits>
#include <utility>

#include "base/numbers.h"
#include "interchange/writers.h"
#include "model/diversity_document.h"

namespace zorvel {

namespace {

constexpr int coverageDigits = 4;
constexpr int diversityDigits = 3;

struct CensusSample {
    std::string name;
    DiversityEstimator estimator;
};

}  // namespace

const char* diversityAbsenceText(DiversityAbsence absence, SampleKind kind) {
    const bool abundance = kind == SampleKind::abundance;
    switch (absence) {
        case DiversityAbsence::noTaxa:
            return "There are no species.";
        case DiversityAbsence::sizeOne:
            return abundance ? "A single specimen says nothing about coverage."
                             : "A single census says nothing about coverage.";
        case DiversityAbsence::allSingletons:
            return abundance
                       ? "Every species was found once: Simpson diversity cannot be estimated."
                       : "Every species was found in one census: Simpson diversity cannot be "
                         "estimated.";
        case DiversityAbsence::neverReached:
            return "This coverage would need more than any sample: all of it is never reached.";
    }
    return "";
}

const char* sampleMethodName(SampleMethod method) {
    switch (method) {
        case SampleMethod::rarefied:
            return "rarefied";
        case SampleMethod::observed:
            return "observed";
        case SampleMethod::extrapolated:
            break;
    }
    return "extrapolated";
}

std::string numberCell(const std::optional<double>& value, int digits) {
    return value && std::isfinite(*value) ? fixedText(*value, digits) : "-";
}

std::string diversityCell(const std::optional<double>& value) {
    return numberCell(value, diversityDigits);
}

std::string coverageCell(const std::optional<double>& coverage) {
    return numberCell(coverage, coverageDigits);
}

std::string sizeCell(const std::optional<double>& size) {
    return numberCell(size, size && *size == std::floor(*size) ? 0 : 3);
}

ConfidenceLimits diversityLimits(double estimate, double standardError) {
    return normalLimits(estimate, standardError, 0, std::numeric_limits<double>::infinity());
}

void addLimitCells(TableCells& cells, const std::optional<double>& estimate,
                   const std::optional<double>& standardError) {
    std::optional<ConfidenceLimits> limits;
    if (estimate && standardError) limits = diversityLimits(*estimate, *standardError);
    for (const auto which : {&ConfidenceLimits::lower95, &ConfidenceLimits::upper95,
                             &ConfidenceLimits::lower99, &ConfidenceLimits::upper99}) {
        cells.push_back(diversityCell(limits ? std::optional((*limits).*which) : std::nullopt));
    }
}

TableCells diversityTitles() {
    TableCells titles{"coverage", "sampleSize", "method"};
    for (const char* q : {"q0", "q1", "q2"}) {
        titles.emplace_back(q);
        for (const char* limit : {"lower95limit", "upper95limit", "lower99limit", "upper99limit"}) {
            titles.push_back(std::string(q) + limit);
        }
    }
    return titles;
}

TableCells diversityCells(const std::optional<DiversityPoint>& at,
                          const StandardErrors::Orders& errors) {
    TableCells cells{"-", "-", "-"};
    if (at) cells = {coverageCell(at->coverage), sizeCell(at->size), sampleMethodName(at->method)};
    for (std::size_t q = 0; q < kHillOrders; ++q) {
        const auto value = at ? std::optional(at->diversity[q]) : std::nullopt;
        cells.push_back(diversityCell(value));
        addLimitCells(cells, value, errors[q]);
    }
    return cells;
}

std::string tableLine(const TableCells& cells, char separator) {
    std::string line;
    for (const std::string& cell : cells) {
        if (&cell != &cells.front()) line += separator;
        appendTableCell(line, cell, separator);
    }
    return line + '\n';
}

std::optional<CommonCoverageTable> commonCoverageTable(const std::vector<Census>& censuses,
                                                       const std::stop_token& stop) {
    std::vector<CensusSample> samples;
    NameList names = censusNameList(censuses);
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        samples.push_back({names[i], DiversityEstimator(
                                         abundanceFrequencies(includedCountsVector(censuses[i])))});
    }
    const std::optional<CommonCoverage> common = commonCoverage(samples);
    TableCells cells = diversityTitles();
    cells.insert(cells.begin(), "census");
    std::string text = tableLine(cells);
    for (const CensusSample& sample : samples) {
        std::optional<DiversityPoint> at;
        StandardErrors::Orders errors;
        if (common) {
            BootstrapPlan plan;
            plan.coverages = {common->coverage};
            at = sample.estimator.atCoverage(common->coverage);
            const auto found = bootstrapErrors(sample.estimator, plan, stop);
            if (found) errors = found->atCoverages.front();
        }
        if (stop.stop_requested()) return std::nullopt;
        cells = diversityCells(at, errors);
        cells.insert(cells.begin(), sample.name);
        text += tableLine(cells);
    }
    return CommonCoverageTable{std::move(text), common.has_value()};
}

}  // namespace zorvel
