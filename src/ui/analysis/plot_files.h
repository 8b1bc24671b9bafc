// A plot taken out of the program: with titles around it, as a PDF page, SVG or an image, and on
// paper. Main thread (fonts).
#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>
#include <functional>

class QPagedPaintDevice;
class QPainter;

namespace zorvel {

struct PlotDrawing {
    QSize size;     // whole points
    QString title;  // of the document
    // Paints the rectangle of that size from (0, 0), in units of points.
    std::function<void(QPainter&)> draw;
};

struct PlotTitles {
    QString name;  // of what the plot is of; may be empty
    QString below;
    QString beside;
};

// The plot, painted as it is, on a larger white page: the name above it, shortened to the page's
// width, and the titles of its axes below and, reading upwards, beside it.
PlotDrawing titledPlot(const PlotDrawing& plot, const PlotTitles& titles);

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

// In the middle of the page and in its size, one unit a point; smaller where the page is. False
// where the device cannot be painted on.
bool printDrawing(QPagedPaintDevice& device, const PlotDrawing& drawing);

}  // namespace zorvel
