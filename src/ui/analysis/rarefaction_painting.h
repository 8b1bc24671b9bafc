// Paints a rarefaction plot, the same on screen, on a PDF page, in SVG and in an image. Whoever has
// the painter's device.
#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QPolygonF>

#include "ui/analysis/rarefaction_plot.h"

class QPainter;

namespace zorvel {

// All that is painted, computed and chosen beforehand.
struct RarefactionPlot {
    PlotGeometry geometry;
    QList<QPolygonF> curve;
    QList<QPolygonF> band;
    QColor curveColor;
    QColor bandColor;
    QFont labelFont;
    QColor labelColor = Qt::black;
};

// Helvetica or another sans serif of 10 points: of 10 units whatever the device's resolution, so
// that screen and page agree.
QFont plotLabelFont();

// A plot colour as it fills the band.
QColor bandColorOf(const QColor& plotColor);

// Onto a ground of the geometry's size whose upper left corner is the painter's (0, 0): white
// ground, axes, ticks, curve, and the band over it.
void paintRarefactionPlot(QPainter& painter, const RarefactionPlot& plot);

}  // namespace zorvel
