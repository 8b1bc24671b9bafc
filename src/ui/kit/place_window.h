// Where a window that belongs to no project appears. Main thread.
#pragma once

#include <QPoint>
#include <QRect>

class QWidget;

namespace zorvel {

// The place of the window's outer corner: left from the screen's left edge, top below the top of
// the part of the screen that windows may use.
QPoint windowPlace(const QRect& screen, const QRect& available, int left, int top);

// Moves the window's frame there, on the screen that it is on; nothing where it is on none.
void placeWindow(QWidget& window, int left, int top);

}  // namespace zorvel
