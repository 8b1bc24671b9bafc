#include "ui/kit/placed_window.h"

#include <QEvent>
#include <QScreen>
#include <QWindow>

#include "ui/kit/fitting_size.h"

namespace zorvel {

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
    if (appears) windowHandle()->installEventFilter(this);
}

// Not by move(), which goes by the width of the frame: that may not be known yet.
bool PlacedWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == windowHandle() && event->type() == QEvent::Expose &&
        windowHandle()->isExposed()) {
        watched->removeEventFilter(this);
        windowHandle()->setFramePosition(place());
    }
    return QMainWindow::eventFilter(watched, event);
}

}  // namespace zorvel
