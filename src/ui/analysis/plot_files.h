// A drawing as the bytes of a file: one PDF page, SVG, or a PNG image. Each has exactly the size of
// the drawing, in points. Main thread (fonts).
#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>
#include <functional>

class QPainter;

namespace zorvel {

struct PlotDrawing {
    QSize size;     // whole points
    QString title;  // of the document
    // Paints the rectangle of that size from (0, 0), in units of points.
    std::function<void(QPainter&)> draw;
};

// Text stays text in both. Empty where the drawing has no size.
QByteArray pdfOf(const PlotDrawing& drawing);
QByteArray svgOf(const PlotDrawing& drawing);

// Two pixels a point; transparent where nothing is drawn.
QImage imageOf(const PlotDrawing& drawing);
QByteArray pngOf(const PlotDrawing& drawing);

}  // namespace zorvel
