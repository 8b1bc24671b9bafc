// The size and place of a window that opens, so that its screen has room for it. Main thread.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace zorvel {

// Of a window's inside, so that it fits with its frame into that much of a screen where the frame's
// top-left corner stands at that place.
QSize fittingSize(const QSize& wanted, const QSize& available, const QPoint& corner = {});

// On the screen that the window will be shown on.
void resizeToFit(QWidget& window, const QSize& wanted, const QPoint& corner = {});

// Where the frame of a new window stands: a step right of and below that of the one before, as far
// as there is room for the least size of its inside, and after the farthest place in the corner of
// the screen again.
QPoint cascadedPlace(const QPoint& before, const QSize& least, const QRect& available);
// Moves the window there, and makes it fit.
void cascade(QWidget& window, const QWidget& before);

}  // namespace zorvel
