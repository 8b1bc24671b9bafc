#include "ui/analysis/curves_painting.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

#include "ui/analysis/plot_files.h"

namespace zorvel {

namespace {

constexpr double lineWidth = 2;
constexpr double emphasisedWidth = 3.5;
constexpr double paleAlpha = 0.15;
constexpr double markerRadius = 4.5;
constexpr double longestLabel = 130;
constexpr double gapBeforeLabel = 10;
constexpr double tickLength = 5;
constexpr double roomBelowLabels = 24;  // below the frame

QPen curvePen(const PlotCurve& curve, bool emphasised, bool dashed) {
    QPen pen(curve.color, emphasised ? emphasisedWidth : lineWidth);
    pen.setCapStyle(Qt::FlatCap);
    pen.setJoinStyle(Qt::RoundJoin);
    if (dashed) pen.setDashPattern({4, 3});
    return pen;
}

// Six shapes, filled and then hollow.
QPainterPath markerShape(int marker) {
    constexpr double r = markerRadius;
    constexpr std::array<std::array<QPointF, 4>, 5> shapes{{
        {QPointF(-r, -r), QPointF(r, -r), QPointF(r, r), QPointF(-r, r)},
        {QPointF(0, -1.3 * r), QPointF(1.2 * r, r), QPointF(-1.2 * r, r), QPointF(0, -1.3 * r)},
        {QPointF(0, -1.4 * r), QPointF(1.4 * r, 0), QPointF(0, 1.4 * r), QPointF(-1.4 * r, 0)},
        {QPointF(0, 1.3 * r), QPointF(1.2 * r, -r), QPointF(-1.2 * r, -r), QPointF(0, 1.3 * r)},
        {QPointF(-1.5 * r, -0.7 * r), QPointF(1.5 * r, -0.7 * r), QPointF(1.5 * r, 0.7 * r),
         QPointF(-1.5 * r, 0.7 * r)},
    }};
    QPainterPath path;
    const int shape = marker % (kMarkers / 2);
    if (shape == 0) {
        path.addEllipse(QPointF(), r, r);
        return path;
    }
    const auto& corners = shapes[static_cast<std::size_t>(shape - 1)];
    path.moveTo(corners[0]);
    for (std::size_t i = 1; i < corners.size(); ++i) path.lineTo(corners[i]);
    path.closeSubpath();
    return path;
}

void drawMarker(QPainter& painter, const PlotCurve& curve, const QPointF& place) {
    painter.setPen(QPen(curve.color, 1.5));
    painter.setBrush(curve.marker < kMarkers / 2 ? curve.color : QColor(Qt::white));
    painter.drawPath(markerShape(curve.marker).translated(place));
}

void drawAxes(QPainter& painter, const PlotFrame& plot) {
    const QRectF& frame = plot.frame();
    const QFontMetricsF metrics(plotFont(10));
    painter.setFont(plotFont(10));
    painter.setPen(QPen(Qt::black, 1));
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawLine(frame.bottomLeft(), frame.bottomRight());
    painter.drawLine(frame.bottomLeft(), frame.topLeft());
    for (const AxisTick& tick : axisTicks(plot.axes().x)) {
        const QPointF foot = plot.pointOf({tick.value, 0});
        painter.drawLine(foot, foot + QPointF(0, tickLength));
        const QRectF room(foot.x() - 50, foot.y() + tickLength + 1, 100, metrics.height());
        painter.drawText(room, Qt::AlignHCenter | Qt::AlignTop, tick.label);
    }
    for (const AxisTick& tick : axisTicks(plot.axes().y)) {
        const QPointF foot = plot.pointOf({0, tick.value});
        painter.drawLine(foot, foot - QPointF(tickLength, 0));
        const QRectF room(0, foot.y() - 20, foot.x() - tickLength - 3, 40);
        painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter, tick.label);
    }
    painter.setRenderHint(QPainter::Antialiasing);
}

void drawBand(QPainter& painter, const PlotFrame& plot, const PlotCurve& curve) {
    QPolygonF lower;
    QPolygonF upper;
    const auto flush = [&] {
        if (lower.size() > 1) {
            std::reverse(upper.begin(), upper.end());
            QColor pale = curve.color;
            pale.setAlphaF(paleAlpha);
            painter.setPen(Qt::NoPen);
            painter.setBrush(pale);
            painter.drawPolygon(lower + upper, Qt::WindingFill);
        }
        lower.clear();
        upper.clear();
    };
    for (qsizetype i = 0; i < curve.lower.size(); ++i) {
        if (std::isfinite(curve.lower[i].y()) && std::isfinite(curve.upper[i].y())) {
            lower.append(plot.pointOf(curve.lower[i]));
            upper.append(plot.pointOf(curve.upper[i]));
        } else {
            flush();
        }
    }
    flush();
}

void drawCurve(QPainter& painter, const PlotFrame& plot, const PlotCurve& curve, bool emphasised) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(curvePen(curve, emphasised, false));
    painter.drawPolyline(plot.polygonOf(curve.known));
    painter.setPen(curvePen(curve, emphasised, true));
    painter.drawPolyline(plot.polygonOf(curve.predicted));
    if (curve.own) drawMarker(painter, curve, plot.pointOf(*curve.own));
}

// The last point of the curve.
std::optional<QPointF> endOf(const PlotCurve& curve) {
    for (const QPolygonF* line : {&curve.predicted, &curve.known}) {
        if (!line->isEmpty()) return line->last();
    }
    return std::nullopt;
}

// Each with its marker, beside the end of its curve, and a thin line to that where it had to move.
void drawLabels(QPainter& painter, const PlotFrame& plot, const std::vector<PlotCurve>& curves) {
    const QFontMetricsF metrics(plotFont(10));
    std::vector<double> wanted;
    std::vector<const PlotCurve*> labelled;
    for (const PlotCurve& curve : curves) {
        const std::optional<QPointF> end = endOf(curve);
        if (!end || curve.label.isEmpty()) continue;
        wanted.push_back(plot.pointOf(*end).y());
        labelled.push_back(&curve);
    }
    if (wanted.empty()) return;
    const QRectF& frame = plot.frame();
    const double bottom = frame.bottom() + roomBelowLabels;
    const double height =
        std::min(metrics.height() + 1, bottom / static_cast<double>(wanted.size()));
    const std::vector<double> heights = spreadLabels(wanted, height, 0, bottom);
    painter.setFont(plotFont(10));
    for (std::size_t i = 0; i < labelled.size(); ++i) {
        const PlotCurve& curve = *labelled[i];
        const QPointF end = plot.pointOf(*endOf(curve));
        const QPointF place(frame.right() + gapBeforeLabel, heights[i]);
        QColor pale = curve.color;
        pale.setAlphaF(0.6);
        painter.setPen(QPen(pale, 0.75));
        painter.drawLine(end, place - QPointF(2, 0));
        painter.save();
        painter.translate(place + QPointF(4, 0));
        painter.scale(0.7, 0.7);
        drawMarker(painter, curve, {});
        painter.restore();
        painter.setPen(Qt::black);
        painter.drawText(QRectF(place.x() + 11, place.y() - height, longestLabel, 2 * height),
                         Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(curve.label, Qt::ElideRight, longestLabel - 12));
    }
}

void drawLine(QPainter& painter, const PlotFrame& plot, double value) {
    const QRectF& frame = plot.frame();
    const double x = plot.pointOf({value, 0}).x();
    if (x < frame.left() - 0.5 || x > frame.right() + 0.5) return;
    painter.setPen(QPen(QColor(0, 0, 0, 150), 1.5));
    painter.drawLine(QPointF(x, frame.top()), QPointF(x, frame.bottom()));
    painter.setBrush(QColor(0, 0, 0, 150));
    painter.setPen(Qt::NoPen);
    painter.drawPolygon(QPolygonF{QPointF(x - 5, frame.top() - 6), QPointF(x + 5, frame.top() - 6),
                                  QPointF(x, frame.top())});
}

}  // namespace

std::optional<PlotFrame> frameOf(const CurvesPlot& plot, const QSizeF& size) {
    const std::optional<PlotAxes> axes = axesOf(plot.curves);
    if (!axes) return std::nullopt;
    const QFontMetricsF metrics(plotFont(10));
    double width = 0;
    for (const PlotCurve& curve : plot.curves) {
        if (curve.label.isEmpty()) continue;
        width = std::max(width, 12 + metrics.horizontalAdvance(curve.label));
    }
    return PlotFrame(*axes, size, width == 0 ? 0 : gapBeforeLabel + std::min(width, longestLabel));
}

void paintCurves(QPainter& painter, const CurvesPlot& plot, const QSizeF& size) {
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.fillRect(QRectF(QPointF(), size), Qt::white);
    if (const std::optional<PlotFrame> frame = frameOf(plot, size)) {
        for (const PlotCurve& curve : plot.curves) drawBand(painter, *frame, curve);
        if (plot.line) drawLine(painter, *frame, *plot.line);
        for (int i = 0; i < static_cast<int>(plot.curves.size()); ++i) {
            if (i != plot.emphasised)
                drawCurve(painter, *frame, plot.curves[static_cast<std::size_t>(i)], false);
        }
        if (plot.emphasised >= 0)
            drawCurve(painter, *frame, plot.curves[static_cast<std::size_t>(plot.emphasised)],
                      true);
        drawAxes(painter, *frame);
        drawLabels(painter, *frame, plot.curves);
    }
    painter.restore();
}

}  // namespace zorvel
