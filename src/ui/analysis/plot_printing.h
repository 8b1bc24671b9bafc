// A drawing on paper. Main thread (fonts).
#pragma once

#include "ui/analysis/plot_files.h"

class QPagedPaintDevice;

namespace zorvel {

// In the middle of the page and in its size, one unit a point; smaller where the page is. False
// where the device cannot be painted on.
bool printDrawing(QPagedPaintDevice& device, const PlotDrawing& drawing);

}  // namespace zorvel
