#include "ui/analysis/curves_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace zorvel {

namespace {

constexpr double reachOfLine = 6;  // points beside it
constexpr int stepsOfLine = 200;   // across the axis

// The x of all points of a curve, ascending.
std::vector<double> placesOf(const PlotCurve& curve) {
    std::vector<double> places;
    for (const QPolygonF* line : {&curve.known, &curve.predicted}) {
        for (const QPointF& point : *line) {
            if (places.empty() || point.x() > places.back()) places.push_back(point.x());
        }
    }
    return places;
}

double nearest(const std::vector<double>& places, double x) {
    const auto after = std::lower_bound(places.begin(), places.end(), x);
    if (after == places.begin()) return places.front();
    if (after == places.end()) return places.back();
    return x - *(after - 1) <= *after - x ? *(after - 1) : *after;
}

}  // namespace

void CurvesView::setPlot(CurvesPlot plot) {
    plot_ = std::move(plot);
    if (mark_) {
        const auto curve = static_cast<std::size_t>(mark_->curve);
        const bool stays =
            curve < plot_.curves.size() && (valueAt(plot_.curves[curve].known, mark_->x) ||
                                            valueAt(plot_.curves[curve].predicted, mark_->x));
        if (!stays) setMark(std::nullopt);
    }
    update();
}

bool CurvesView::isDrawable() const {
    return axesOf(plot_.curves).has_value();
}

void CurvesView::drawRect(QPainter& painter) {
    paintCurves(painter, plot_, size());
}

void CurvesView::setMark(std::optional<Mark> mark) {
    if (mark == mark_) return;
    mark_ = mark;
    update();
    emit markDidChange();
}

// A ring on each of its lines over a thin one down to the axis.
void CurvesView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    CurvesPlot shown = plot_;
    if (mark_) shown.emphasised = mark_->curve;
    paintCurves(painter, shown, size());
    const std::optional<PlotFrame> frame = frameOf(plot_, size());
    if (!frame || !mark_) return;
    const PlotCurve& curve = plot_.curves[static_cast<std::size_t>(mark_->curve)];
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::white);
    for (const QPolygonF* line : {&curve.known, &curve.predicted}) {
        const std::optional<double> height = valueAt(*line, mark_->x);
        if (!height) continue;
        const QPointF place = frame->pointOf({mark_->x, *height});
        painter.setPen(QPen(QColor(0, 0, 0, 110), 1, Qt::DotLine));
        painter.drawLine(QPointF(place.x(), frame->frame().bottom()), place);
        painter.setPen(QPen(Qt::black, 1.5));
        painter.drawEllipse(place, 4.5, 4.5);
    }
}

bool CurvesView::isOnLine(const QPointF& place) const {
    const std::optional<PlotFrame> frame = plot_.line ? frameOf(plot_, size()) : std::nullopt;
    return frame && std::fabs(frame->pointOf({*plot_.line, 0}).x() - place.x()) <= reachOfLine &&
           frame->frame().adjusted(-reachOfLine, -12, reachOfLine, 0).contains(place);
}

void CurvesView::mousePressEvent(QMouseEvent* event) {
    dragging_ = event->button() == Qt::LeftButton && isOnLine(event->position());
    if (!dragging_) QWidget::mousePressEvent(event);
}

void CurvesView::mouseReleaseEvent(QMouseEvent* event) {
    dragging_ = false;
    QWidget::mouseReleaseEvent(event);
}

void CurvesView::markAt(const QPointF& place) {
    const std::optional<PlotFrame> frame = frameOf(plot_, size());
    if (dragging_) {
        clearMark();
        const bool rests = plot_.rest && std::fabs(frame->pointOf({*plot_.rest, 0}).x() -
                                                   place.x()) <= reachOfLine;
        emit lineDidMove(rests ? *plot_.rest : frame->xAt(place.x()));
        return;
    }
    const bool onLine = isOnLine(place);
    setCursor(onLine ? Qt::SplitHCursor : Qt::ArrowCursor);
    const int curve = onLine ? -1 : nearestCurve(plot_.curves, *frame, place);
    if (curve < 0) return clearMark();
    setMark(Mark{curve, nearest(placesOf(plot_.curves[static_cast<std::size_t>(curve)]),
                                frame->xAt(place.x()))});
}

// Up and down from one curve to the next, the other keys along the curve; with Shift, the line.
bool CurvesView::markByKey(int key, Qt::KeyboardModifiers modifiers) {
    const bool isAside = key == Qt::Key_Left || key == Qt::Key_Right;
    if (modifiers == Qt::ShiftModifier && isAside && plot_.line) {
        moveLine(key == Qt::Key_Left ? -1 : 1);
        return true;
    }
    if (modifiers != Qt::NoModifier) return false;
    Mark next = mark_.value_or(Mark{});
    const int count = static_cast<int>(plot_.curves.size());
    if (mark_ && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        next.curve = (next.curve + (key == Qt::Key_Up ? count - 1 : 1)) % count;
        key = 0;
    }
    const std::vector<double> places = placesOf(plot_.curves[static_cast<std::size_t>(next.curve)]);
    if (places.empty()) return false;
    int place = -1;
    if (mark_) {
        const auto at = std::find(places.begin(), places.end(), nearest(places, next.x));
        place = static_cast<int>(at - places.begin());
    }
    const std::optional<int> moved =
        key == 0 ? place : placeAfterKey(key, place, static_cast<int>(places.size()) - 1);
    if (!moved) return false;
    next.x = places[static_cast<std::size_t>(*moved)];
    setMark(next);
    return true;
}

void CurvesView::moveLine(int steps) {
    const double end = axesOf(plot_.curves)->x;
    emit lineDidMove(std::clamp(*plot_.line + steps * (end / stepsOfLine), 0.0, end));
}

}  // namespace zorvel
