// The size of a window that opens: the one that suits it, or what the screen has room for. Main
// thread.
#pragma once

#include <QPoint>
#include <QSize>

class QWidget;

namespace zorvel {

// Of a window's inside, so that it fits with its frame into that much of a screen where the frame's
// top-left corner stands at that place.
QSize fittingSize(const QSize& wanted, const QSize& available, const QPoint& corner = {});

// On the screen that the window will be shown on.
void resizeToFit(QWidget& window, const QSize& wanted, const QPoint& corner = {});

}  // namespace zorvel
