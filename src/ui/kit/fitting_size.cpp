#include "ui/kit/fitting_size.h"

#include <QScreen>
#include <QWidget>

namespace zorvel {

namespace {
// Both sides together. A window knows its frame only when it is on the screen; common desktops have
// smaller ones.
constexpr QSize frame(12, 44);
}  // namespace

QSize fittingSize(const QSize& wanted, const QSize& available, const QPoint& corner) {
    return wanted.boundedTo(available - frame - QSize(corner.x(), corner.y()));
}

void resizeToFit(QWidget& window, const QSize& wanted, const QPoint& corner) {
    const QScreen* screen = window.screen();
    if (screen == nullptr) return window.resize(wanted);
    window.resize(fittingSize(wanted, screen->availableSize(), corner));
}

}  // namespace zorvel
