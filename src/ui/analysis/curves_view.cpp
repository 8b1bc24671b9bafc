#include "ui/analysis/curves_view.h"

#include <QKeyEvent>
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

std::optional<double> heightOf(const PlotCurve& curve, double x) {
    const std::optional<double> known = valueAt(curve.known, x);
    return known ? known : valueAt(curve.predicted, x);
}

double nearest(const std::vector<double>& places, double x) {
    const auto after = std::lower_bound(places.begin(), places.end(), x);
    if (after == places.begin()) return places.front();
    if (after == places.end()) return places.back();
    return x - *(after - 1) <= *after - x ? *(after - 1) : *after;
}

}  // namespace

CurvesView::CurvesView(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CurvesView::setPlot(CurvesPlot plot) {
    plot_ = std::move(plot);
    if (mark_) {
        const bool stays = mark_->curve < static_cast<int>(plot_.curves.size()) &&
                           heightOf(plot_.curves[static_cast<std::size_t>(mark_->curve)], mark_->x);
        if (!stays) setMark(std::nullopt);
    }
    update();
}

bool CurvesView::isDrawable() const {
    return axesOf(plot_.curves).has_value();
}

void CurvesView::draw(QPainter& painter) const {
    paintCurves(painter, plot_, size());
}

void CurvesView::setMark(std::optional<Mark> mark) {
    if (mark == mark_) return;
    mark_ = mark;
    update();
    emit markDidChange();
}

// A ring on the curve over a thin line down to the axis.
void CurvesView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    CurvesPlot shown = plot_;
    if (mark_) shown.emphasised = mark_->curve;
    paintCurves(painter, shown, size());
    const std::optional<PlotFrame> frame = frameOf(plot_, size());
    if (!frame || !mark_) return;
    const PlotCurve& curve = plot_.curves[static_cast<std::size_t>(mark_->curve)];
    const std::optional<double> height = heightOf(curve, mark_->x);
    if (!height) return;
    const QPointF place = frame->pointOf({mark_->x, *height});
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0, 0, 0, 110), 1, Qt::DotLine));
    painter.drawLine(QPointF(place.x(), frame->frame().bottom()), place);
    painter.setPen(QPen(Qt::black, 1.5));
    painter.setBrush(Qt::white);
    painter.drawEllipse(place, 4.5, 4.5);
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

void CurvesView::mouseMoveEvent(QMouseEvent* event) {
    const std::optional<PlotFrame> frame = frameOf(plot_, size());
    if (!frame) return;
    const QPointF place = event->position();
    if (dragging_) {
        setMark(std::nullopt);
        emit lineDidMove(frame->xAt(place.x()));
        return;
    }
    const bool onLine = isOnLine(place);
    setCursor(onLine ? Qt::SplitHCursor : Qt::ArrowCursor);
    const int curve = onLine ? -1 : nearestCurve(plot_.curves, *frame, place);
    if (curve < 0) return setMark(std::nullopt);
    setMark(Mark{curve, nearest(placesOf(plot_.curves[static_cast<std::size_t>(curve)]),
                                frame->xAt(place.x()))});
}

void CurvesView::mouseReleaseEvent(QMouseEvent* event) {
    dragging_ = false;
    QWidget::mouseReleaseEvent(event);
}

void CurvesView::leaveEvent(QEvent* /*event*/) {
    if (!dragging_) setMark(std::nullopt);
}

// Left and right along the curve, up and down from one to the next.
void CurvesView::moveMark(int key) {
    const int count = static_cast<int>(plot_.curves.size());
    Mark next = mark_.value_or(Mark{});
    if (mark_ && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        next.curve = (next.curve + (key == Qt::Key_Up ? count - 1 : 1)) % count;
    }
    const std::vector<double> places = placesOf(plot_.curves[static_cast<std::size_t>(next.curve)]);
    if (places.empty()) return;
    const auto at = mark_ ? std::lower_bound(places.begin(), places.end(), nearest(places, next.x))
                          : places.begin();
    next.x = *at;
    if (key == Qt::Key_Home || (!mark_ && key != Qt::Key_End)) {
        next.x = places.front();
    } else if (key == Qt::Key_End) {
        next.x = places.back();
    } else if (key == Qt::Key_Left && at != places.begin()) {
        next.x = *(at - 1);
    } else if (key == Qt::Key_Right && at + 1 != places.end()) {
        next.x = *(at + 1);
    }
    setMark(next);
}

void CurvesView::moveLine(int steps) {
    const std::optional<PlotAxes> axes = axesOf(plot_.curves);
    if (!axes || !plot_.line) return;
    const double step = (axes->x.to - axes->x.from) / stepsOfLine;
    emit lineDidMove(std::clamp(*plot_.line + steps * step, axes->x.from, axes->x.to));
}

void CurvesView::keyPressEvent(QKeyEvent* event) {
    static constexpr int keys[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,
                                   Qt::Key_Down, Qt::Key_Home,  Qt::Key_End};
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool known = std::find(std::begin(keys), std::end(keys), event->key()) != std::end(keys);
    const bool aside = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    if (isDrawable() && known && modifiers == Qt::NoModifier) {
        moveMark(event->key());
    } else if (isDrawable() && aside && plot_.line && modifiers == Qt::ShiftModifier) {
        moveLine(event->key() == Qt::Key_Left ? -1 : 1);
    } else if (event->key() == Qt::Key_Escape && mark_) {
        setMark(std::nullopt);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void CurvesView::focusInEvent(QFocusEvent* event) {
    const Qt::FocusReason reason = event->reason();
    emit focusDidChange(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
}

void CurvesView::focusOutEvent(QFocusEvent* /*event*/) {
    emit focusDidChange(false);
}

}  // namespace zorvel
