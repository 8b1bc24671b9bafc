// The numbers of a plot of several curves: axes, ticks, and labels at the ends of the curves, apart
// from any painting. Lengths are in points from the upper left corner of the plot. Pure functions;
// any thread.
#pragma once

#include <QColor>
#include <QList>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QString>
#include <optional>
#include <vector>

namespace zorvel {

// A curve in units of its axes; x ascends in each polyline.
struct PlotCurve {
    QString label;  // at its end
    QColor color;
    int marker = 0;              // tells curves apart without colour: see kMarkers
    QPolygonF known;             // solid
    QPolygonF predicted;         // dashed; begins where known ends
    std::optional<QPointF> own;  // of the sample itself, marked
    QPolygonF lower;             // the limits of the band, of the same x; empty: no band
    QPolygonF upper;
};

inline constexpr int kMarkers = 12;

// The smallest axes from 0 that hold all curves with their bands. A band may not make y more than
// twice as long as the curves do. Absent without a point to the right of 0 and above it.
struct PlotAxes {
    double x = 0;  // where it ends
    double y = 0;
};
std::optional<PlotAxes> axesOf(const std::vector<PlotCurve>& curves);

struct AxisTick {
    double value = 0;
    QString label;
};
// At most seven, at multiples of 1, 2 or 5 times a power of ten, with the decimals of the step.
std::vector<AxisTick> axisTicks(double end);

// Where the axes stand in a plot of that size; labels take the room to the right of the frame.
class PlotFrame {
  public:
    PlotFrame(const PlotAxes& axes, const QSizeF& size, double labelWidth);

    [[nodiscard]] const QRectF& frame() const { return frame_; }
    [[nodiscard]] const PlotAxes& axes() const { return axes_; }
    [[nodiscard]] QPointF pointOf(const QPointF& value) const;
    [[nodiscard]] double xAt(double place) const;  // the value of a place, within the axis
    [[nodiscard]] QPolygonF polygonOf(const QPolygonF& values) const;

  private:
    PlotAxes axes_;
    QRectF frame_;
};

// The heights of labels that are to stand at the given heights (of their middles), moved apart so
// that none overlaps another, as little as that takes, within the range as far as it has room.
std::vector<double> spreadLabels(const std::vector<double>& wanted, double height, double top,
                                 double bottom);

// The value of a curve at x, linear between its points; absent beyond its ends.
std::optional<double> valueAt(const QPolygonF& line, double x);

// The curve whose line is nearest in height to the place, at the place's x; -1 if none reaches it.
int nearestCurve(const std::vector<PlotCurve>& curves, const PlotFrame& frame,
                 const QPointF& place);

}  // namespace zorvel
