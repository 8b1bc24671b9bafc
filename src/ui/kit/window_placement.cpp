#include "ui/kit/window_placement.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>

namespace zorvel {

namespace {
// Both sides together. A window knows its frame only when it is on the screen; common desktops have
// smaller ones.
constexpr QSize frameAllowance(12, 44);
constexpr QPoint cascadeStep(30, 30);
}  // namespace

QSize fittingSize(const QSize& wanted, const QSize& available, const QPoint& corner) {
    return wanted.boundedTo(available - frameAllowance - QSize(corner.x(), corner.y()));
}

void resizeToFit(QWidget& window, const QSize& wanted, const QPoint& corner) {
    const QScreen* screen = window.screen();
    if (screen == nullptr) return window.resize(wanted);
    window.resize(fittingSize(wanted, screen->availableSize(), corner));
}

QPoint cascadedPlace(const QPoint& before, const QSize& least, const QRect& available) {
    const QSize spare = available.size() - frameAllowance - least;
    const QPoint farthest = available.topLeft() + QPoint(spare.width(), spare.height());
    const QPoint next = before + cascadeStep;
    const QPoint place(std::min(next.x(), farthest.x()), std::min(next.y(), farthest.y()));
    return place != before && available.contains(place) ? place : available.topLeft();
}

void cascade(QWidget& window, const QWidget& before) {
    const QRect available = before.screen()->availableGeometry();
    const QPoint place = cascadedPlace(before.pos(), window.minimumSize(), available);
    window.resize(fittingSize(window.size(), available.size(), place - available.topLeft()));
    window.move(place);
}

QPoint PlacedWindow::place() const {
    return {screen()->geometry().left() + left_, screen()->availableGeometry().top() + top_};
}

void PlacedWindow::resizeToFit(const QSize& wanted) {
    zorvel::resizeToFit(*this, wanted, {left_, top_});
}

// Before the window is on the screen, so that it is not seen elsewhere. A window manager may take
// the place for that of the content, or its own: once the frame is there, it is told again.
void PlacedWindow::setVisible(bool visible) {
    const bool appears = visible && isHidden() && screen() != nullptr;
    if (appears) move(place());
    QMainWindow::setVisible(visible);
    if (!appears) return;
    wasExposed_ = false;
    windowHandle()->installEventFilter(this);
}

// Qt knows the width of the frame some time after the window is exposed: each event is a chance to
// look. A window without a frame has had its place at the first.
bool PlacedWindow::eventFilter(QObject* watched, QEvent* event) {
    QWindow* const window = windowHandle();
    if (watched == window && window->isExposed()) {
        const QMargins frame = window->frameMargins();
        if (!frame.isNull()) watched->removeEventFilter(this);
        if (!frame.isNull() || !wasExposed_) {
            wasExposed_ = true;
            window->setPosition(place() + QPoint(frame.left(), frame.top()));
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

}  // namespace zorvel
