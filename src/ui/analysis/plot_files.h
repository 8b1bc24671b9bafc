// A drawing as what a file or the clipboard holds: one PDF page, SVG, or an image. Main thread
// (fonts).
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

// On a page of exactly the drawing's size. Text stays text in this and in SVG. Both are empty where
// the drawing has no size.
QByteArray pdfOf(const PlotDrawing& drawing);

// As wide on paper as is said, and as high in proportion. naturalWidth(): with a unit of a point.
double naturalWidth(const PlotDrawing& drawing);  // cm
QByteArray svgOf(const PlotDrawing& drawing, double widthCm);
// Tells its resolution; transparent where nothing is drawn. Null where memory has no room for it.
QImage imageOf(const PlotDrawing& drawing, double widthCm, int dpi);
QSize pixelsOf(const QSize& drawing, double widthCm, int dpi);

// Any thread.
QByteArray pngOf(const QImage& image);

}  // namespace zorvel
