#include "ui/analysis/rarefaction_painting.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

namespace zorvel {

namespace {

constexpr double curveWidth = 3;
constexpr double bandAlpha = 0.2;

QPen penOf(const QColor& color, double width) {
    return {color, width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin};
}

// Upright although the plot's y grows upwards; place is the lower left corner of the text.
void drawLabel(QPainter& painter, const QPointF& place, const QString& label) {
    const QTransform flipped = painter.transform();
    painter.translate(place);
    painter.scale(1, -1);
    painter.drawText(QPointF(0, -QFontMetricsF(painter.font()).descent()), label);
    painter.setTransform(flipped);
}

// Without antialiasing, upright and level lines are sharp on a screen; on a page it is the same.
void drawAxes(QPainter& painter, const PlotGeometry& geometry) {
    const double share = 1 - 2 * geometry.marginPercent;
    const QPointF origin = geometry.origin();
    const QList<PlotTick> ticks = xTicks(geometry) + yTicks(geometry);
    painter.setPen(penOf(Qt::black, 1));
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawLine(origin, origin + QPointF(share * geometry.width, 0));
    painter.drawLine(origin, origin + QPointF(0, share * geometry.height));
    for (const PlotTick& tick : ticks) painter.drawLine(tick.foot, tick.end);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(plotLabelFont());
    for (const PlotTick& tick : ticks) drawLabel(painter, tick.labelPlace, tick.label);
}

void drawCurve(QPainter& painter, const RarefactionPlot& plot) {
    painter.setPen(penOf(plot.color, curveWidth));
    painter.setBrush(Qt::NoBrush);
    for (const QPolygonF& line : plot.curve) painter.drawPolyline(line);
}

void drawConfidenceBand(QPainter& painter, const RarefactionPlot& plot) {
    QColor pale = plot.color;
    pale.setAlphaF(bandAlpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(pale);
    for (const QPolygonF& polygon : plot.band) painter.drawPolygon(polygon, Qt::WindingFill);
}

}  // namespace

QFont plotLabelFont() {
    QFont font(QStringLiteral("Helvetica"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(10);
    return font;
}

void paintRarefactionPlot(QPainter& painter, const RarefactionPlot& plot) {
    const PlotGeometry& geometry = plot.geometry;
    const QRectF bounds(0, 0, geometry.width, geometry.height);
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.translate(0, geometry.height);
    painter.scale(1, -1);
    painter.fillRect(bounds, Qt::white);
    drawAxes(painter, geometry);
    drawCurve(painter, plot);
    drawConfidenceBand(painter, plot);
    painter.restore();
}

}  // namespace zorvel
