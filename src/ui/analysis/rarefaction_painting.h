// Paints a rarefaction plot, the same on screen, on a PDF page, in SVG and in an image. The thread
// of the painter's device.
#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QPolygonF>

#include "ui/analysis/rarefaction_plot.h"

class QPainter;

namespace zorvel {

// All that is painted, computed beforehand.
struct RarefactionPlot {
    PlotGeometry geometry;
    QList<QPolygonF> curve;
    QList<QPolygonF> band;
    QColor color;  // of the curve; the band is a pale form of it
};

// Helvetica or another sans serif, 10 units high whatever the device's resolution, so that screen
// and page agree.
QFont plotLabelFont();

// Onto a ground of the geometry's size whose upper left corner is the painter's (0, 0): white
// ground, axes, ticks, curve, and the band over it.
void paintRarefactionPlot(QPainter& painter, const RarefactionPlot& plot);

}  // namespace zorvel
