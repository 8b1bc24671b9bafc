#include "ui/kit/placed_window.h"

#include <QEvent>
#include <QScreen>
#include <QWindow>

namespace zorvel {

void PlacedWindow::placeWindow() {
    if (screen() == nullptr) return;
    move(screen()->geometry().left() + left_, screen()->availableGeometry().top() + top_);
}

// Before the window is on the screen, so that it is not seen elsewhere. A window manager may take
// the place for that of the content, or its own: once the frame is there, its place is corrected.
void PlacedWindow::setVisible(bool visible) {
    const bool appears = visible && isHidden();
    if (appears) placeWindow();
    QMainWindow::setVisible(visible);
    if (appears && windowHandle() != nullptr) windowHandle()->installEventFilter(this);
}

bool PlacedWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == windowHandle() && event->type() == QEvent::Expose &&
        windowHandle()->isExposed()) {
        watched->removeEventFilter(this);
        placeWindow();
    }
    return QMainWindow::eventFilter(watched, event);
}

}  // namespace zorvel
