#include "ui/kit/place_window.h"

#include <QScreen>
#include <QWidget>

namespace zorvel {

QPoint windowPlace(const QRect& screen, const QRect& available, int left, int top) {
    return {screen.left() + left, available.top() + top};
}

void placeWindow(QWidget& window, int left, int top) {
    const QScreen* screen = window.screen();
    if (screen == nullptr) return;
    window.move(windowPlace(screen->geometry(), screen->availableGeometry(), left, top));
}

}  // namespace zorvel
