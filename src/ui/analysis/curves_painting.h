// Paints a plot of several curves, the same on screen, on a PDF page, in SVG and in an image. The
// thread of the painter's device.
#pragma once

#include <QSizeF>
#include <optional>
#include <vector>

#include "ui/analysis/curves_plot.h"

class QPainter;

namespace zorvel {

struct CurvesPlot {
    std::vector<PlotCurve> curves;
    std::optional<double> line;  // an upright line at this x
    std::optional<double> rest;  // where it snaps to when it is dragged
    int emphasised = -1;         // drawn thicker and last; -1: none
};

// The frame of the plot at that size, with room for the labels; absent if nothing can be drawn.
std::optional<PlotFrame> frameOf(const CurvesPlot& plot, const QSizeF& size);

// Over the rectangle of that size from the painter's (0, 0), on white ground: bands, curves (solid
// where known, dashed where predicted), a marker at each sample's own place, axes, and labels.
void paintCurves(QPainter& painter, const CurvesPlot& plot, const QSizeF& size);

}  // namespace zorvel
