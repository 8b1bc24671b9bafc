// A plot with what a manuscript needs around it. Main thread (fonts).
#pragma once

#include "ui/analysis/plot_files.h"

namespace zorvel {

struct PlotTitles {
    QString name;  // of what the plot is of; may be empty
    QString below;
    QString beside;
};

// The plot, painted as it is, on a larger white page: the name above it, shortened to the page's
// width, and the titles of its axes below and, reading upwards, beside it.
PlotDrawing titledPlot(const PlotDrawing& plot, const PlotTitles& titles);

}  // namespace zorvel
