#include "ui/kit/fitting_size.h"

#include <QScreen>
#include <QWidget>
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

}  // namespace zorvel
