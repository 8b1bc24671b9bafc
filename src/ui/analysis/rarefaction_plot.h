// The numbers of a rarefaction plot: its scale, ticks, curve and confidence band, apart from any
// painting. Lengths are in points; x grows to the right and y upwards from the lower left corner of
// the plot. Pure functions; any thread.
#pragma once

#include <QList>
#include <QPointF>
#include <QPolygonF>
#include <QString>
#include <optional>
#include <span>

#include "metrics/rarefaction.h"

namespace zorvel {

enum class ConfidenceLevel { percent95, percent99 };

// Exactly 0.95 or 0.99; none for any other number.
std::optional<ConfidenceLevel> confidenceLevelOf(double confidence);
// "95%".
QString confidenceLevelText(ConfidenceLevel level);

// Of a Rarefaction or of ConfidenceLimits.
template <class Limits>
double lowerLimit(const Limits& limits, ConfidenceLevel level) {
    return level == ConfidenceLevel::percent95 ? limits.lower95 : limits.lower99;
}
template <class Limits>
double upperLimit(const Limits& limits, ConfidenceLevel level) {
    return level == ConfidenceLevel::percent95 ? limits.upper95 : limits.upper99;
}
// Both of them are finite.
bool hasLimits(const Rarefaction& point, ConfidenceLevel level);

// The largest upper limit of the level, NaN passed over; 0 if there is none above 0.
double maxUpperLimit(std::span<const Rarefaction> data, ConfidenceLevel level);

// What the axis of richness runs to: the largest upper limit, or if that is zero or not finite
// (a curve without any variance that can be computed still has its estimates) the largest finite
// number among upper limits and estimates; 0 if there is none.
double richnessMaximum(std::span<const Rarefaction> data, ConfidenceLevel level);

// With fewer records nothing is drawn.
inline constexpr std::size_t kFewestPlotPoints = 3;

// A record (s, r) is drawn at (xConst + xMult s, yConst + yMult r). An axis whose maximum is zero,
// negative or not finite has no scale: its factor is 0, and nothing that depends on it is drawn.
struct PlotGeometry {
    double height = 0;
    double width = 0;
    double marginPercent = 0.1;  // on each side, as a fraction of the width or the height
    double xMult = 0;            // points per unit of sample size
    double yMult = 0;            // points per unit of richness
    double xConst = 0;
    double yConst = 0;
    double maxSampleSize = 0;
    double maxDiversity = 0;
    double tickLengthConstant = 0.02;  // as a fraction of the height

    [[nodiscard]] bool hasScale() const { return xMult > 0 && yMult > 0; }
    [[nodiscard]] double tickLength() const { return tickLengthConstant * height; }
    [[nodiscard]] QPointF origin() const { return {xConst, yConst}; }
    [[nodiscard]] QPointF pointOf(double sampleSize, double richness) const;
};

PlotGeometry computeGeometry(std::span<const Rarefaction> data, double width, double height,
                             double maxDiversity);

// The step between the ticks of an axis that runs to maximum: the smallest of 1, 2, 5, 10, 20, ...
// of which six reach the whole part of the maximum, so that an axis has at most seven ticks. None
// for an axis without a scale.
std::optional<double> tickSpacing(double maximum);

struct PlotTick {
    double value = 0;
    QPointF foot;        // on the axis
    QPointF end;         // outside of it
    QString label;       // the value without decimals
    QPointF labelPlace;  // lower left corner of the label
};

QList<PlotTick> xTicks(const PlotGeometry& geometry);
QList<PlotTick> yTicks(const PlotGeometry& geometry);

// From the origin through every record; a further polyline begins after a record whose estimate is
// not finite. Empty without a scale.
QList<QPolygonF> curveLines(std::span<const Rarefaction> data, const PlotGeometry& geometry);

// One polygon per run of records whose limits are finite, forward along the lower limits and back
// along the upper ones: a limit that is not finite leaves a gap. The run of the first record
// begins and ends at the image of (1, 1) and closes by way of the origin.
QList<QPolygonF> bandPolygons(std::span<const Rarefaction> data, const PlotGeometry& geometry,
                              ConfidenceLevel level);

// The place of the record whose sample size is drawn nearest to x; -1 without records or scale.
int nearestRecord(std::span<const Rarefaction> data, const PlotGeometry& geometry, double x);

}  // namespace zorvel
