// The curves and the table of the window of diversity at equal coverage, apart from its widgets:
// computed on any thread from the counts of its subjects, and turned into curves of a plot.
#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "metrics/diversity_limits.h"
#include "model/diversity_table.h"
#include "ui/analysis/curves_plot.h"
#include "ui/analysis/rarefaction_plot.h"

namespace zorvel {

enum class DiversityAcross { sizes, coverage, orders };

// What a plot shows of the curves.
struct DiversityView {
    std::size_t order = 0;  // does not matter across orders
    DiversityAcross across = DiversityAcross::coverage;
    SampleKind kind = SampleKind::abundance;  // of the curves
};

// A census, all of them pooled, or the presences over them.
struct DiversitySubject {
    QString name;
    FrequencyCounts counts;
};

struct DiversityCurve {
    QString name;
    DiversityEstimator estimator;
    std::vector<DiversityPoint> points;          // up to twice the sample; empty below size 2
    std::vector<std::optional<double>> profile;  // estimated, of orders 0 to 2 by tenths
    // Of the points at equal size and at equal coverage, and of the profile.
    std::optional<StandardErrors> errors;
};
// Shared with the jobs that read them.
using DiversityCurves = std::shared_ptr<const std::vector<DiversityCurve>>;

DiversityCurve diversityCurve(const DiversitySubject& subject);
// Absent if stopped, or if there is nothing to vary.
std::optional<StandardErrors> errorsOf(const DiversityCurve& curve, const std::stop_token& stop);

// Of all curves that have points; the marker of each is its place.
std::vector<PlotCurve> plotCurves(const std::vector<DiversityCurve>& curves,
                                  const DiversityView& view, std::optional<ConfidenceLevel> level);

// A row of the table.
struct CoverageRow {
    QString name;
    FrequencyCounts sample;
    std::optional<double> coverage;  // of the sample itself
    std::optional<DiversityPoint> at;
    std::optional<StandardErrors::Orders> errors;
    QString remark;  // why there is no value, or what is doubtful about it
};
std::vector<CoverageRow> coverageRows(const std::vector<DiversityCurve>& curves, double coverage);
// The standard errors of the row of a curve; absent if stopped.
std::optional<StandardErrors::Orders> errorsAt(const DiversityCurve& curve, double coverage,
                                               const std::stop_token& stop);

// As text: census, its size (specimens or censuses) and coverage, what diversityTitles() name, and
// the remark.
QString coverageTable(const std::vector<CoverageRow>& rows, char separator);

}  // namespace zorvel
