#include "ui/analysis/rarefaction_view.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/console.h"
#include "base/numbers.h"
#include "platform/preferences.h"
#include "ui/analysis/plot_files.h"
#include "ui/kit/look.h"

namespace zorvel {

namespace {

constexpr int pageOfPoints = 10;  // by the page keys
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

RarefactionView::RarefactionView(QWidget* parent) : QWidget(parent) {
    setObjectName("rarefactionView");
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
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
    emit markedPointDidChange(marked_);
}

void RarefactionView::mouseMoveEvent(QMouseEvent* event) {
    if (isDrawable()) {
        markPoint(nearestRecord(*rarefactionData_, geometry_, event->position().x()));
    }
}

void RarefactionView::leaveEvent(QEvent* /*event*/) {
    markPoint(-1);
}

int RarefactionView::placeAfterKey(int key) const {
    const int last = static_cast<int>(rarefactionData_->size()) - 1;
    switch (key) {
        case Qt::Key_Right:
        case Qt::Key_Up:
            return marked_ + 1;
        case Qt::Key_Left:
        case Qt::Key_Down:
            return marked_ < 0 ? last : std::max(marked_ - 1, 0);
        case Qt::Key_PageUp:
            return std::max(marked_, 0) + pageOfPoints;
        case Qt::Key_PageDown:
            return std::max((marked_ < 0 ? last : marked_) - pageOfPoints, 0);
        case Qt::Key_Home:
            return 0;
        default:
            return last;
    }
}

void RarefactionView::keyPressEvent(QKeyEvent* event) {
    static constexpr int keys[] = {Qt::Key_Right,  Qt::Key_Up,   Qt::Key_Left, Qt::Key_Down,
                                   Qt::Key_PageUp, Qt::Key_Home, Qt::Key_End,  Qt::Key_PageDown};
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (!plain || !isDrawable()) return QWidget::keyPressEvent(event);
    if (std::find(std::begin(keys), std::end(keys), event->key()) != std::end(keys)) {
        markPoint(placeAfterKey(event->key()));
    } else if (event->key() == Qt::Key_Escape && marked_ >= 0) {
        markPoint(-1);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void RarefactionView::focusInEvent(QFocusEvent* event) {
    const Qt::FocusReason reason = event->reason();
    emit focusDidChange(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
}

void RarefactionView::focusOutEvent(QFocusEvent* /*event*/) {
    emit focusDidChange(false);
}

QSize RarefactionView::sizeHint() const {
    return {600, 400};
}

QSize RarefactionView::minimumSizeHint() const {
    return {200, 150};
}

PlotPaper::PlotPaper(QWidget* parent) : QFrame(parent) {
    setPalette(lookPalette(ColorScheme::light));
}

void PlotPaper::setFocused(bool focused) {
    focused_ = focused;
    update();
}

void PlotPaper::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& around = lookColors(QApplication::palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(focused_ ? around.accent : around.border, focused_ ? 2 : 1));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 8, 8);
}

void UpwardLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.translate(0, height());
    painter.rotate(-90);
    painter.drawText(QRect(0, 0, height(), width()), Qt::AlignCenter, text());
}

}  // namespace zorvel
