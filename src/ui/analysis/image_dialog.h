// Asks how a plot is to be saved as an image: its format, its width on paper, the resolution of
// PNG, and whether titles stand around it. Return goes on to where it is saved, Escape cancels. An
// image that cannot be saved is refused at once, with the reason. Main thread.
#pragma once

#include <QSize>
#include <functional>

#include "platform/preferences.h"

class QWidget;

namespace zorvel {

// Returns at once. figureSize(titles): of the drawing with or without titles, in points. chosen:
// not called if cancelled. Both are called only while the owner exists.
void askForImage(const PlotImage& proposed, std::function<QSize(bool titles)> figureSize,
                 QWidget& owner, std::function<void(const PlotImage&)> chosen);

}  // namespace zorvel
