#include "ui/analysis/plot_view.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "ui/kit/look.h"
#include "ui/kit/small_widgets.h"

namespace zorvel {

namespace {

constexpr int pageOfPlaces = 10;  // by the page keys

}  // namespace

PlotView::PlotView(QWidget* parent) : QWidget(parent) {
    setAccessibleRole<PlotView, QAccessible::Chart>();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

std::optional<int> PlotView::placeAfterKey(int key, int place, int last) {
    const auto within = [last](int next) { return std::clamp(next, 0, last); };
    const int from = place < 0 ? last : place;  // backwards
    switch (key) {
        case Qt::Key_Right:
        case Qt::Key_Up:
            return within(place + 1);
        case Qt::Key_Left:
        case Qt::Key_Down:
            return place < 0 ? last : within(place - 1);
        case Qt::Key_PageUp:
            return within(std::max(place, 0) + pageOfPlaces);
        case Qt::Key_PageDown:
            return within(from - pageOfPlaces);
        case Qt::Key_Home:
            return 0;
        case Qt::Key_End:
            return last;
        default:
            return std::nullopt;
    }
}

void PlotView::mouseMoveEvent(QMouseEvent* event) {
    if (isDrawable()) markAt(event->position());
}

void PlotView::leaveEvent(QEvent* /*event*/) {
    clearMark();
}

void PlotView::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (isDrawable() && markByKey(event->key(), modifiers)) return;
    if (event->key() == Qt::Key_Escape && hasMark()) {
        clearMark();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void PlotView::focusInEvent(QFocusEvent* event) {
    const Qt::FocusReason reason = event->reason();
    emit focusDidChange(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
}

void PlotView::focusOutEvent(QFocusEvent* /*event*/) {
    emit focusDidChange(false);
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
