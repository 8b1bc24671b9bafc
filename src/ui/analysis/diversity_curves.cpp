#include "ui/analysis/diversity_curves.h"

#include <cmath>
#include <iterator>
#include <string>
#include <utility>

namespace zorvel {

namespace {

constexpr std::size_t profileOrders = 21;

double profileOrder(std::size_t place) {
    return static_cast<double>(place) / 10;
}

QColor curveColor(std::size_t place) {
    // Colours of Okabe & Ito (2008) that stand out from white, and darker forms of them.
    static const QColor colors[] = {{0, 114, 178},  {213, 94, 0},  {0, 158, 115},  {204, 121, 167},
                                    {86, 180, 233}, {230, 159, 0}, {0, 0, 0},      {0, 70, 110},
                                    {140, 60, 0},   {0, 100, 70},  {130, 70, 105}, {110, 110, 110}};
    return colors[place % std::size(colors)];
}

// x of a point.
double placeOf(const DiversityPoint& point, DiversityAcross across) {
    return across == DiversityAcross::sizes ? point.size : point.coverage;
}

// The coverages of the points, each larger than the one before.
std::vector<double> coveragesOf(const std::vector<DiversityPoint>& points) {
    std::vector<double> coverages;
    for (const DiversityPoint& point : points) {
        if (coverages.empty() || point.coverage > coverages.back()) {
            coverages.push_back(point.coverage);
        }
    }
    return coverages;
}

void addLimits(PlotCurve& curve, double x, double estimate, const std::optional<double>& error,
               ConfidenceLevel level) {
    if (!error) return;
    const ConfidenceLimits limits = diversityLimits(estimate, *error);
    curve.lower.append(QPointF(x, lowerLimit(limits, level)));
    curve.upper.append(QPointF(x, upperLimit(limits, level)));
}

void addPoints(PlotCurve& plot, const DiversityCurve& curve, std::size_t order,
               DiversityAcross across, std::optional<ConfidenceLevel> level) {
    const bool bySize = across == DiversityAcross::sizes;
    std::size_t place = 0;  // among the points of the errors
    double last = -1;
    for (std::size_t i = 0; i < curve.points.size(); ++i) {
        const DiversityPoint& point = curve.points[i];
        const double x = placeOf(point, across);
        const double y = point.diversity[order];
        if (!bySize && x <= last) continue;
        last = x;
        const QPointF here(x, y);
        if (point.method != SampleMethod::extrapolated) {
            plot.known.append(here);
        } else {
            if (plot.predicted.isEmpty() && !plot.known.isEmpty()) {
                plot.predicted.append(plot.known.last());
            }
            plot.predicted.append(here);
        }
        if (point.method == SampleMethod::observed) plot.own = here;
        if (level && curve.errors) {
            const auto& errors = bySize ? curve.errors->atSizes : curve.errors->atCoverages;
            addLimits(plot, x, y, errors[place][order], *level);
        }
        ++place;
    }
}

void addProfile(PlotCurve& plot, const DiversityCurve& curve,
                std::optional<ConfidenceLevel> level) {
    for (std::size_t i = 0; i < curve.profile.size(); ++i) {
        const double q = profileOrder(i);
        if (const std::optional<double> observed = curve.estimator.observed(q)) {
            plot.known.append(QPointF(q, *observed));
        }
        if (!curve.profile[i]) continue;
        plot.predicted.append(QPointF(q, *curve.profile[i]));
        if (level && curve.errors) {
            addLimits(plot, q, *curve.profile[i], curve.errors->estimated[i], *level);
        }
    }
}

// The standard sizes, and more of the first, where coverage grows fastest.
std::vector<double> curveSizes(double size) {
    std::vector<double> sizes = standardSizes(size);
    std::vector<double> more;
    double next = 2;
    while (sizes.size() > 1 && next < sizes[1]) {
        more.push_back(next);
        next = std::ceil(1.4 * next);
    }
    sizes.insert(sizes.begin() + 1, more.begin(), more.end());
    return sizes;
}

}  // namespace

DiversityCurve diversityCurve(const DiversitySubject& subject) {
    DiversityCurve curve{subject.name, DiversityEstimator(subject.counts), {}, {}, {}};
    if (!curve.estimator.coverage()) return curve;
    for (const double size : curveSizes(subject.counts.size)) {
        curve.points.push_back(*curve.estimator.atSize(size));
    }
    for (std::size_t i = 0; i < profileOrders; ++i) {
        curve.profile.push_back(curve.estimator.estimated(profileOrder(i)));
    }
    return curve;
}

std::optional<StandardErrors> errorsOf(const DiversityCurve& curve, const std::stop_token& stop) {
    BootstrapPlan plan;
    for (const DiversityPoint& point : curve.points) plan.sizes.push_back(point.size);
    plan.coverages = coveragesOf(curve.points);
    for (std::size_t i = 0; i < curve.profile.size(); ++i) plan.orders.push_back(profileOrder(i));
    return bootstrapErrors(curve.estimator, plan, stop);
}

std::vector<PlotCurve> plotCurves(const std::vector<DiversityCurve>& curves,
                                  const DiversityView& view, std::optional<ConfidenceLevel> level) {
    std::vector<PlotCurve> plots;
    for (const DiversityCurve& curve : curves) {
        if (curve.points.empty()) continue;
        PlotCurve plot;
        plot.label = curve.name;
        plot.color = curveColor(plots.size());
        plot.marker = static_cast<int>(plots.size() % kMarkers);
        if (view.across == DiversityAcross::orders) {
            addProfile(plot, curve, level);
        } else {
            addPoints(plot, curve, view.order, view.across, level);
        }
        plots.push_back(std::move(plot));
    }
    return plots;
}

std::vector<CoverageRow> coverageRows(const std::vector<DiversityCurve>& curves, double coverage) {
    std::vector<CoverageRow> rows;
    for (const DiversityCurve& curve : curves) {
        const FrequencyCounts& counts = curve.estimator.sample();
        CoverageRow row{
            curve.name, counts, curve.estimator.coverage(), curve.estimator.atCoverage(coverage),
            {},         {}};
        if (const auto absence = curve.estimator.coverageAbsence(coverage)) {
            row.remark = diversityAbsenceText(*absence, counts.kind);
        } else if (row.at && row.at->beyondTwice) {
            row.remark = "More than twice the sample: its richness is not reliable.";
        } else if (row.at && row.at->belowOne) {
            row.remark = counts.kind == SampleKind::abundance
                             ? "Even one specimen has a larger coverage."
                             : "Even one census has a larger coverage.";
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::optional<StandardErrors::Orders> errorsAt(const DiversityCurve& curve, double coverage,
                                               const std::stop_token& stop) {
    BootstrapPlan plan;
    plan.coverages = {coverage};
    const std::optional<StandardErrors> errors = bootstrapErrors(curve.estimator, plan, stop);
    return errors ? std::optional(errors->atCoverages.front()) : std::nullopt;
}

QString coverageTable(const std::vector<CoverageRow>& rows, char separator) {
    const auto line = [separator](TableCells own, const TableCells& there, std::string remark) {
        own.insert(own.end(), there.begin(), there.end());
        own.push_back(std::move(remark));
        return tableLine(own, separator);
    };
    TableCells titles = diversityTitles();
    titles.front() = "atCoverage";
    std::string text = line({"census", "size", "coverage"}, titles, "remark");
    for (const CoverageRow& row : rows) {
        text +=
            line({row.name.toStdString(), sizeCell(row.sample.size), coverageCell(row.coverage)},
                 diversityCells(row.at, row.errors.value_or(StandardErrors::Orders())),
                 row.remark.toStdString());
    }
    return QString::fromStdString(text);
}

}  // namespace zorvel
