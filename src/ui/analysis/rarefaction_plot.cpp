#include "ui/analysis/rarefaction_plot.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"

namespace zorvel {

namespace {

bool isScalable(double maximum) {
    return std::isfinite(maximum) && maximum > 0;
}

double scaleOf(double length, double marginPercent, double maximum) {
    if (!isScalable(maximum)) return 0;
    const double scale = (length - 2 * marginPercent * length) / maximum;
    return std::isfinite(scale) ? scale : 0;
}

// 1, 2, 5, 10, 20, 50, 100, ...
double tickStep(std::size_t place) {
    constexpr double steps[] = {1, 2, 5};
    return steps[place % 3] * std::pow(10.0, place / 3);
}

// Of an axis from the origin to maximum times unit. outwards: from a tick's foot to its end; label:
// from the foot to the label's place.
QList<PlotTick> ticks(const PlotGeometry& geometry, double maximum, const QPointF& unit,
                      const QPointF& outwards, const QPointF& label) {
    QList<PlotTick> ticks;
    const std::optional<double> step = tickSpacing(maximum);
    if (!step) return ticks;
    const int count = static_cast<int>(maximum / *step + 1.0);
    for (int i = 0; i < count; ++i) {
        const double value = *step * i;
        const QPointF foot = geometry.origin() + value * unit;
        ticks.append({value, foot, foot + outwards, QString::fromStdString(fixedText(value, 0)),
                      foot + label});
    }
    return ticks;
}

QPolygonF bandOfRun(std::span<const Rarefaction> run, const PlotGeometry& geometry,
                    ConfidenceLevel level) {
    QPolygonF band;
    const auto append = [&](const Rarefaction& point, double limit) {
        band.append(geometry.pointOf(static_cast<double>(point.sampleSize), limit));
    };
    for (const Rarefaction& point : run) append(point, lowerLimit(point, level));
    for (std::size_t i = run.size(); i > 0; --i) {
        append(run[i - 1], upperLimit(run[i - 1], level));
    }
    return band;
}

}  // namespace

std::optional<ConfidenceLevel> confidenceLevelOf(double confidence) {
    if (confidence == 0.95) return ConfidenceLevel::percent95;
    if (confidence == 0.99) return ConfidenceLevel::percent99;
    return std::nullopt;
}

QString confidenceLevelText(ConfidenceLevel level) {
    return level == ConfidenceLevel::percent95 ? QStringLiteral("95%") : QStringLiteral("99%");
}

bool hasLimits(const Rarefaction& point, ConfidenceLevel level) {
    return std::isfinite(lowerLimit(point, level)) && std::isfinite(upperLimit(point, level));
}

double maxUpperLimit(std::span<const Rarefaction> data, ConfidenceLevel level) {
    double largest = 0;
    for (const Rarefaction& point : data) {
        const double limit = upperLimit(point, level);
        if (limit > largest) largest = limit;
    }
    return largest;
}

double richnessMaximum(std::span<const Rarefaction> data, ConfidenceLevel level) {
    const double limit = maxUpperLimit(data, level);
    if (isScalable(limit)) return limit;
    double largest = 0;
    for (const Rarefaction& point : data) {
        for (const double value : {upperLimit(point, level), point.estimate}) {
            if (std::isfinite(value)) largest = std::max(largest, value);
        }
    }
    return largest;
}

QPointF PlotGeometry::pointOf(double sampleSize, double richness) const {
    return {xMult * sampleSize + xConst, richness * yMult + yConst};
}

PlotGeometry computeGeometry(std::span<const Rarefaction> data, double width, double height,
                             double maxDiversity) {
    PlotGeometry geometry;
    geometry.height = height;
    geometry.width = width;
    geometry.maxSampleSize = data.empty() ? 0 : static_cast<double>(data.back().sampleSize);
    geometry.maxDiversity = maxDiversity;
    geometry.xMult = scaleOf(width, geometry.marginPercent, geometry.maxSampleSize);
    geometry.yMult = scaleOf(height, geometry.marginPercent, maxDiversity);
    geometry.xConst = geometry.marginPercent * width;
    geometry.yConst = geometry.marginPercent * height;
    return geometry;
}

std::optional<double> tickSpacing(double maximum) {
    if (!isScalable(maximum)) return std::nullopt;
    const double whole = std::trunc(maximum);
    std::size_t place = 0;
    while (6 * tickStep(place) < whole) ++place;
    return tickStep(place);
}

QList<PlotTick> xTicks(const PlotGeometry& geometry) {
    const double length = geometry.tickLength();
    return ticks(geometry, geometry.maxSampleSize, {geometry.xMult, 0}, {0, -length},
                 {-0.5 * length, -3 * length});
}

QList<PlotTick> yTicks(const PlotGeometry& geometry) {
    const double length = geometry.tickLength();
    return ticks(geometry, geometry.maxDiversity, {0, geometry.yMult}, {-length, 0},
                 {-3 * length, -0.7 * length});
}

QList<QPolygonF> curveLines(std::span<const Rarefaction> data, const PlotGeometry& geometry) {
    if (!geometry.hasScale()) return {};
    QList<QPolygonF> lines;
    QPolygonF line{{geometry.origin()}};
    for (const Rarefaction& point : data) {
        if (std::isfinite(point.estimate)) {
            line.append(geometry.pointOf(static_cast<double>(point.sampleSize), point.estimate));
            continue;
        }
        if (line.size() > 1) lines.append(line);
        line.clear();
    }
    if (line.size() > 1) lines.append(line);
    return lines;
}

QList<QPolygonF> bandPolygons(std::span<const Rarefaction> data, const PlotGeometry& geometry,
                              ConfidenceLevel level) {
    if (!geometry.hasScale()) return {};
    QList<QPolygonF> polygons;
    std::size_t first = 0;
    while (first < data.size()) {
        std::size_t end = first;
        while (end < data.size() && hasLimits(data[end], level)) ++end;
        if (end > first) {
            QPolygonF band = bandOfRun(data.subspan(first, end - first), geometry, level);
            if (first == 0) {
                band.prepend(geometry.pointOf(1, 1));
                band.append(geometry.pointOf(1, 1));
                band.append(geometry.origin());
            }
            polygons.append(band);
        }
        first = end + 1;
    }
    return polygons;
}

int nearestRecord(std::span<const Rarefaction> data, const PlotGeometry& geometry, double x) {
    if (data.empty() || !geometry.hasScale()) return -1;
    const double wanted = (x - geometry.xConst) / geometry.xMult;
    const auto after = std::lower_bound(data.begin(), data.end(), wanted,
                                        [](const Rarefaction& point, double size) {
                                            return static_cast<double>(point.sampleSize) < size;
                                        });
    if (after == data.begin()) return 0;
    const auto before = after - 1;
    if (after == data.end()) return static_cast<int>(data.size()) - 1;
    const bool nearerBefore = wanted - static_cast<double>(before->sampleSize) <=
                              static_cast<double>(after->sampleSize) - wanted;
    return static_cast<int>((nearerBefore ? before : after) - data.begin());
}

}  // namespace zorvel
