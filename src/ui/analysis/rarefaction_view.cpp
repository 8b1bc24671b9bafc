#include "ui/analysis/rarefaction_view.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/console.h"
#include "base/numbers.h"
#include "platform/preferences.h"
#include "ui/analysis/plot_files.h"

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
    painter.setFont(plotFont(10));
    for (const PlotTick& tick : ticks) drawLabel(painter, tick.labelPlace, tick.label);
}

// The level of the preferences; a console line reports one that is not in use.
std::optional<ConfidenceLevel> preferredLevel() {
    const double confidence = Preferences().confidence();
    const std::optional<ConfidenceLevel> level = confidenceLevelOf(confidence);
    if (!level) {
        writeConsoleLine("WARNING: unexpected confidence level of " +
                         shortestTextWithPoint(confidence));
    }
    return level;
}

}  // namespace

RarefactionView::RarefactionView(QWidget* parent) : PlotView(parent) {
    setObjectName("rarefactionView");
}

void RarefactionView::setRarefactionData(std::vector<Rarefaction> curve) {
    rarefactionData_ = std::move(curve);
    marked_ = -1;
    update();
}

bool RarefactionView::isDrawable() const {
    return rarefactionData_ && rarefactionData_->size() >= kFewestPlotPoints;
}

void RarefactionView::drawRect(QPainter& painter) {
    if (!isDrawable()) return;
    const std::vector<Rarefaction>& curve = *rarefactionData_;
    const std::optional<ConfidenceLevel> axisLevel = preferredLevel();
    geometry_ = computeGeometry(curve, width(), height(),
                                axisLevel ? richnessMaximum(curve, *axisLevel) : 1.0);
    QColor color = Preferences().plotColor();
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.translate(0, geometry_.height);
    painter.scale(1, -1);
    painter.fillRect(QRectF(0, 0, geometry_.width, geometry_.height), Qt::white);
    drawAxes(painter, geometry_);
    painter.setPen(penOf(color, curveWidth));
    painter.setBrush(Qt::NoBrush);
    for (const QPolygonF& line : curveLines(curve, geometry_)) painter.drawPolyline(line);
    if (const std::optional<ConfidenceLevel> level = preferredLevel()) {
        color.setAlphaF(bandAlpha);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        for (const QPolygonF& polygon : bandPolygons(curve, geometry_, *level)) {
            painter.drawPolygon(polygon, Qt::WindingFill);
        }
    }
    painter.restore();
}

void RarefactionView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawRect(painter);
    drawMark(painter);
}

// A ring on the curve over a thin line down to the axis.
void RarefactionView::drawMark(QPainter& painter) const {
    if (!isDrawable() || marked_ < 0 || !geometry_.hasScale()) return;
    const Rarefaction& point = (*rarefactionData_)[static_cast<std::size_t>(marked_)];
    if (!std::isfinite(point.estimate)) return;
    const QPointF up = geometry_.pointOf(static_cast<double>(point.sampleSize), point.estimate);
    const QPointF place(up.x(), height() - up.y());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0, 0, 0, 110), 1, Qt::DashLine));
    painter.drawLine(QPointF(place.x(), height() - geometry_.yConst), place);
    painter.setPen(QPen(Qt::black, 1.5));
    painter.setBrush(Qt::white);
    painter.drawEllipse(place, 4.5, 4.5);
}

void RarefactionView::markPoint(int place) {
    const int count = isDrawable() ? static_cast<int>(rarefactionData_->size()) : 0;
    const int marked = place < 0 || count == 0 ? -1 : std::min(place, count - 1);
    if (marked == marked_) return;
    marked_ = marked;
    update();
    emit markDidChange();
}

void RarefactionView::markAt(const QPointF& place) {
    markPoint(nearestRecord(*rarefactionData_, geometry_, place.x()));
}

bool RarefactionView::markByKey(int key, Qt::KeyboardModifiers modifiers) {
    const int last = static_cast<int>(rarefactionData_->size()) - 1;
    const std::optional<int> place = placeAfterKey(key, marked_, last);
    if (!place || modifiers != Qt::NoModifier) return false;
    markPoint(*place);
    return true;
}

}  // namespace zorvel
