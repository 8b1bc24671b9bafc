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
